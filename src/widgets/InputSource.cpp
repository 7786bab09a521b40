#include "widgets/InputSource.h"

#include "base/SystemLog.h"
#include "widgets/InputHints.h"
#include "widgets/NumberText.h"
#include "widgets/PopUp.h"
#include "widgets/RealSlider.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cmath>
#include <utility>

namespace sonotrace {

namespace {
constexpr int kStateInterval = 500;  // ms
constexpr qint64 kNoticeTime = 4000; // ms
} // namespace

InputSource::InputSource(SoundSystem& system, AudioDeviceTable::Variant devices,
                         const CaptureVariant& variant, const InputControls& controls,
                         CaptureStream::Capture capture)
    : system_(system),
      variant_(devices),
      controls_(controls),
      gain_(system, devices_),
      stream_(system, devices_, variant,
              [this, take = std::move(capture)](std::span<const std::int16_t> interleaved) {
                  watch_.add(interleaved);
                  take(interleaved);
              }),
      fold_(variant.folds ? std::optional(ChannelFold::Sum) : std::nullopt) {
    // `activated`, not a change of index: filling the pop-up is not the user choosing a device.
    connect(controls_.inputPopup, &QComboBox::activated, this, &InputSource::doInputDevice);
    connect(controls_.soundInputVolume2, &RealSlider::valueEdited, this, &InputSource::setSoundInputVolume);
    connect(&stateTimer_, &QTimer::timeout, this, &InputSource::showState);
}

InputSource::~InputSource() {
    Q_EMIT aboutToStop();
}

void InputSource::GetSoundDevices() {
    devices_.GetSoundDevices(system_, variant_);
}

void InputSource::SetSoundDevices() {
    setItems(*controls_.inputPopup, devices_.inputTitles());
}

void InputSource::refreshDevices() {
    devices_ = AudioDeviceTable(); // what is appended to an old one's maps would not be found
    GetSoundDevices();
    SetSoundDevices();
    const auto position = [this](const std::string& uid) { return devices_.inputPosition(uid); };
    const QString trouble =
        selectDeviceInUse(*controls_.inputPopup, position, stream_.chosen(), stream_.state());
    if (!trouble.isEmpty())
        showNotice(trouble);
    SetInputGainSliderVisibility();
}

void InputSource::startSound() {
    Q_EMIT aboutToStart();
    openings_ = 0;
    return_ = DeviceReturn();
    watch_.restart();
    gaps_ = 0;
    newGaps_.invalidate();
    stream_.startSound(controls_.inputPopup->currentIndex());
    Q_EMIT started();
    SetInputGainSliderVisibility();
    SetInputGain(sliderGain());
    showState();
    stateTimer_.start(kStateInterval);
}

void InputSource::doInputDevice() {
    notice_.invalidate();
    stopSound();
    startSound();
}

void InputSource::stopSound() {
    Q_EMIT aboutToStop();
    stream_.stopSound();
}

float InputSource::sliderGain() const {
    const auto value = static_cast<float>(controls_.soundInputVolume2->doubleValue());
    return static_cast<float>(static_cast<double>(value) * 0.001);
}

void InputSource::setSoundInputVolume() {
    const RealSlider& slider = *controls_.soundInputVolume2;
    SetInputGain(sliderGain());
    const QByteArray name = slider.objectName().toUtf8();
    systemLog("soundInputVolume2 %s = %g", name.constData(), slider.doubleValue());
    systemLog("sender %s = %g", name.constData(), slider.doubleValue());
}

void InputSource::SetInputGainSliderVisibility() {
    controls_.soundInputVolume2->setEnabled(
        gain_.SetInputGainSliderVisibility(controls_.inputPopup->currentIndex()));
}

void InputSource::SetInputGain(float gain) {
    gain_.SetInputGain(controls_.inputPopup->currentIndex(), gain);
}

/// A device that was away comes back with a volume of its own.
void InputSource::keepVolume(const QueueState& state) {
    const bool isNew = state.openings > 1 && state.openings != openings_;
    if (!isNew || gain_.resend(controls_.inputPopup->currentIndex(), sliderGain()))
        openings_ = state.openings;
}

void InputSource::showState() {
    const QueueState state = stream_.state();
    if (return_.isReturn(state)) {
        if (devices_.inputPosition(stream_.chosen().uid) != controls_.inputPopup->currentIndex())
            refreshDevices(); // its list was built while the device was away
        showNotice(QString("%1 is back and listened to again").arg(QString::fromStdString(state.deviceName)));
    }
    keepVolume(state);
    if (state.deviceUid != calibratedUid_)
        calibrate(state.deviceUid);
    Hints all = hints(state);
    if (notice_.isValid() && !notice_.hasExpired(kNoticeTime))
        all.push_back({Hint::Urgency::News, noticeText_});
    controls_.inputStatus->say(std::move(all));
}

Hints InputSource::hints(const QueueState& state) {
    const bool isListed = controls_.inputPopup->count() > 0;
    if (!isListed && state.phase != QueueState::Phase::Running && state.phase != QueueState::Phase::Waiting)
        return {{Hint::Urgency::Fault, "There is no input device"}};
    if (state.underruns > std::exchange(gaps_, state.underruns))
        newGaps_.start();
    Hints all = {streamHint(state, newGaps_.isValid() && !newGaps_.hasExpired(kNoticeTime))};
    if (state.phase != QueueState::Phase::Running)
        return all;
    const auto append = [&all](const Hints& more) { all.insert(all.end(), more.begin(), more.end()); };
    if (!isListed)
        all.push_back(
            {Hint::Urgency::Warning, "The list of inputs is empty: choose Tools > Refresh Devices"});
    append(volumeHints({sliderGain(), deviceVolume(state), system_.inputVolumeExponent()}));
    append(signalHints(watch_.findings(), fold_));
    append(calibrationHints());
    toolHints_(all);
    return all;
}

MeasurementOrigin InputSource::origin(qint64 millisecondsAgo) const {
    const std::string device = stream_.state().deviceName;
    const QString source =
        device.empty() ? controls_.inputPopup->currentText() : QString::fromStdString(device);
    const QDateTime then = QDateTime::currentDateTime().addMSecs(-millisecondsAgo);
    const QDateTime time = then.toOffsetFromUtc(then.offsetFromUtc());
    const QString program =
        QCoreApplication::applicationName() + ' ' + QCoreApplication::applicationVersion();
    return {program.simplified().toStdString(), time.toString(Qt::ISODate).toStdString(),
            source.toStdString()};
}

void InputSource::setCalibrations(Calibrations& calibrations) {
    calibrations_ = &calibrations;
    connect(&calibrations, &Calibrations::changed, this, [this] { calibrate(calibratedUid_); });
    calibrate(stream_.state().deviceUid);
}

/// An empty `uid`: the stream is on no device.
void InputSource::calibrate(const std::string& uid) {
    if (!calibrations_ || uid.empty())
        return;
    const Calibration calibration = calibrations_->calibration(Calibrations::Side::Input, uid);
    const auto& correction = calibrations_->correction(uid).curve;
    calibratedUid_ = uid;
    const bool isSameCurve = correction == correction_ || (correction->isEmpty() && correction_->isEmpty());
    if (calibration == calibration_ && isSameCurve)
        return;
    calibration_ = calibration;
    correction_ = correction;
    Q_EMIT calibrationChanged();
}

/// Why a number is not what the user has been promised.
Hints InputSource::calibrationHints() {
    Hints all;
    const std::string_view trouble = calibrationTrouble(calibration_);
    if (!trouble.empty())
        all.push_back(
            {Hint::Urgency::Warning,
             "Not calibrated: " + QString::fromUtf8(trouble.data(), static_cast<qsizetype>(trouble.size()))});
    if (calibrations_ && !calibrations_->correction(calibratedUid_).trouble.isEmpty())
        all.push_back(
            {Hint::Urgency::Warning, describeCorrection(calibrations_->correction(calibratedUid_))});
    return all;
}

/// Nothing when the stream is on another device than the one that the slider acts on. What the slider has
/// just sent takes its time: another volume counts when it is read twice.
std::optional<float> InputSource::deviceVolume(const QueueState& state) {
    const int index = controls_.inputPopup->currentIndex();
    float volume = 0;
    if (gain_.uid(index) != state.deviceUid || !gain_.read(index, volume))
        return std::nullopt;
    return std::exchange(lastVolume_, volume) == volume ? volume : sliderGain();
}

QString InputSource::volumeText() const {
    float volume = 0;
    const int index = controls_.inputPopup->currentIndex();
    if (gain_.uid(index) != stream_.state().deviceUid || !gain_.read(index, volume))
        return "not known";
    const double decibels = 20.0 * system_.inputVolumeExponent() * std::log10(double{volume});
    return QString("%1 %  %2 dB")
        .arg(textWithDecimals(100.0 * double{volume}, 0),
             volume > 0.0F ? textWithDecimals(decibels, 1) : QString("-∞"));
}

void InputSource::setFold(ChannelFold fold) {
    fold_ = fold;
    watch_.setFold(fold);
}

void InputSource::showNotice(const QString& text) {
    noticeText_ = text;
    notice_.start();
    showState();
}

} // namespace sonotrace
