#pragma once

#include "waterfall/FullPictures.h"
#include "waterfall/WaterfallAnalysis.h"
#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallMeasurement.h"
#include "waterfall/WaterfallParameters.h"
#include "waterfall/WaterfallRulers.h"
#include "widgets/InputSource.h"
#include "widgets/ToolController.h"

#include <QElapsedTimer>
#include <QTimer>

#include <atomic>
#include <memory>

namespace Ui {
class WaterfallWindow;
}

namespace sonotrace {

/// The waterfall's window: restores and stores its controls, hands their values to the analysis, shows
/// measurements, and runs the input stream from the moment it is made until the program ends. Window thread;
/// the capture runs on its stream's own.
class WaterfallController : public ToolController {
    Q_OBJECT

public:
    /// All arguments outlive the controller.
    WaterfallController(SoundSystem& system, Preferences& preferences);
    ~WaterfallController() override;

    /// Restores the window and starts to listen. Once.
    void awakeFromNib();

    void refreshDevices() override { source_->refreshDevices(); }

    /// There is nothing to upload to: both do nothing, and the result means nothing.
    static void UploadThread(const char*) {}
    static QObject* uploadOneFile(const QString& file, const QString& toHost, const QString& withUserName,
                                  const QString& andPassword, const QString& andDirectoryOnHost);

    /// Shows a measurement: Hz, and points right of the time reference.
    void setMouseHz(float frequency, float deltaX);

    const WaterfallParameters& parameters() const { return parameters_; }

public Q_SLOTS:
    void doFFTSize();
    void doWindow();
    void startFreqTextChanged();
    void endFreqTextChanged();
    void gainTextChanged();
    void speedupTextChanged();
    void receiverTextChanged();
    void doPlayThru();
    void doTimestamp();
    void doUploadButton();
    void menuSaveWaterfallPicture();
    void setPaused(bool isPaused);
    void fitLimits();
    void choosePictureFolder();

private:
    void setUpAdditions();
    void listStoredControls();
    void setMissingPairs();
    void fillMenus();
    void hideSpareControls();
    void connectControls();
    void capture(std::span<const std::int16_t> interleaved);
    void updateBargraph();
    void addHints(Hints& hints) const;
    void showDroppedSamples();
    void refreshRulers();
    void takeSlowSeconds();
    void showPictureFolder();
    void saveFullPicture();

    SoundSystem& system_;
    Preferences& preferences_;
    const std::unique_ptr<Ui::WaterfallWindow> ui_;
    WaterfallParameters parameters_;
    DeferredLog log_;                             ///< of the capture thread
    const std::unique_ptr<WaterfallImage> image_; ///< several megabytes
    WaterfallAnalysis analysis_;
    WaterfallMeasurement measurement_;
    FullPictures fullPictures_;
    std::atomic<std::int32_t> redrawAsked_{0}; ///< by the capture thread, and not yet heard
    std::unique_ptr<InputSource> source_;
    QTimer bargraphTimer_;
    std::int64_t saidToBeDropped_ = 0; ///< samples
    std::unique_ptr<WaterfallRulers> rulers_;
    QElapsedTimer sinceRefresh_; ///< of the rulers
    QElapsedTimer pause_;        ///< not valid while there is none
};

} // namespace sonotrace
