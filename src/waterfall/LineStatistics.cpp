#include "waterfall/LineStatistics.h"

#include "base/SystemLog.h"

namespace sonotrace {

LogRecord LineStatistics::logRecord() const {
    const auto write = [](const LogRecord::Values& values) {
        frequentLog("minSum:%g  maxSum:%g  minV:%g  maxV:%g", values[0], values[1], values[2], values[3]);
    };
    return {write, {minSum, maxSum, minV, maxV}};
}

} // namespace sonotrace
