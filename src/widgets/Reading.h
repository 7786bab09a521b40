#pragma once

#include <QString>

namespace sonotrace {

/// A number with its name, worded for the user.
struct Reading {
    QString name;
    QString value; ///< with its unit; a dash where it is not defined
    QString tip;   ///< what it is and how far it can be trusted
    bool operator==(const Reading&) const = default;
};

} // namespace sonotrace
