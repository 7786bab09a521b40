#pragma once

#include "audio/AudioDeviceTable.h"
#include "audio/CaptureStream.h"
#include "audio/InputGain.h"
#include "audio/InputWatch.h"
#include "base/MeasurementOrigin.h"
#include "widgets/Calibrations.h"
#include "widgets/DeviceInUse.h"
#include "widgets/StatusRow.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>
#include <optional>
#include <utility>

class QComboBox;

namespace sonotrace {

class RealSlider;

/// The controls of an input tool that choose what it listens to.
struct InputControls {
    QComboBox* inputPopup;
    RealSlider* soundInputVolume2; ///< thousandths of the device's full volume
    StatusRow* inputStatus;        ///< what is being listened to, or what is wrong
};

/// What the three input tools share: the device table and its pop-up, the input volume, the capture stream,
/// and the line that says what is listened to. Window thread.
class InputSource : public QObject {
    Q_OBJECT

public:
    /// `system` and the controls outlive the source.
    InputSource(SoundSystem& system, AudioDeviceTable::Variant devices, const CaptureVariant& variant,
                const InputControls& controls, CaptureStream::Capture capture);
    ~InputSource() override;

    void GetSoundDevices();
    void SetSoundDevices();

    /// Builds the list and the pop-up anew. The stream goes on.
    void refreshDevices();

    /// Starts listening to the selected device and sends it the slider's volume.
    void startSound();
    void stopSound();

    /// Peak level of the first channel, 0 to 1.
    float peakLevel() { return stream_.peakLevel(); }

    /// What the tool analyses of the two channels.
    void setFold(ChannelFold fold);

    /// Has the tool itself asked for what it has to say beside.
    void setHints(std::function<void(Hints& hints)> hints) { toolHints_ = std::move(hints); }

    /// Says something in the place of what is listened to, for a few seconds or until another device is
    /// chosen.
    void showNotice(const QString& text);

    /// Where what the tool shows comes from: the device that is listened to, so many milliseconds ago.
    MeasurementOrigin origin(qint64 millisecondsAgo) const;

    /// What the device that is listened to stands at, whoever set it: "70 %  -9.3 dB".
    QString volumeText() const;

    const AudioDeviceTable& devices() const { return devices_; }

    /// Where the user's calibrations are; without them no device is calibrated. They outlive the source.
    void setCalibrations(Calibrations& calibrations);

    /// Those of the device that is really listened to.
    const Calibration& calibration() const { return calibration_; }
    const MicrophoneCorrection& correction() const { return *correction_; }

Q_SIGNALS:
    void aboutToStop();
    void aboutToStart();
    /// The stream runs; the volume has not been sent to the device yet.
    void started();
    /// calibration() or correction() is another: the user has changed it, or another device is listened to.
    void calibrationChanged();

private:
    void doInputDevice();
    void showState();
    void calibrate(const std::string& uid);
    Hints calibrationHints();
    Hints hints(const QueueState& state);
    std::optional<float> deviceVolume(const QueueState& state);
    void setSoundInputVolume();
    void SetInputGainSliderVisibility();
    void SetInputGain(float gain);
    void keepVolume(const QueueState& state);
    float sliderGain() const;

    SoundSystem& system_;
    const AudioDeviceTable::Variant variant_;
    const InputControls controls_;
    AudioDeviceTable devices_;
    InputGain gain_;
    InputWatch watch_; ///< before the stream, whose thread may add to it until its end
    CaptureStream stream_;
    QTimer stateTimer_;          ///< refreshes that line
    std::uint32_t openings_ = 0; ///< QueueState::openings when the volume was last sent
    DeviceReturn return_;
    QElapsedTimer notice_; ///< since it is shown; not valid while there is none
    QString noticeText_;
    std::optional<ChannelFold> fold_; ///< what the tool analyses, if it is one signal
    std::function<void(Hints& hints)> toolHints_ = [](Hints&) {};
    Calibrations* calibrations_ = nullptr;
    Calibration calibration_;
    std::shared_ptr<const MicrophoneCorrection> correction_ = std::make_shared<MicrophoneCorrection>();
    std::string calibratedUid_;
    float lastVolume_ = 0;   ///< of the device, at the last look
    std::uint64_t gaps_ = 0; ///< QueueState::underruns at the last look
    QElapsedTimer newGaps_;  ///< since there was one
};

} // namespace sonotrace
