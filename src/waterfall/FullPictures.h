#pragma once

#include "waterfall/WaterfallImage.h"
#include "waterfall/WaterfallParameters.h"

#include <QByteArray>
#include <QString>

#include <functional>

class QWidget;

namespace sonotrace {

class Preferences;

/// The time in a picture's name, for QDateTime.
inline constexpr auto kPictureTimeName = "yyyy-MM-dd-HH.mm.ss";

/// Saves pictures of slow columns as they become full, under names with the time, in a folder that the
/// preferences keep. Each column comes into one picture, also while nobody looks. Window thread.
class FullPictures {
public:
    /// All arguments outlive it.
    FullPictures(const WaterfallParameters& parameters, const WaterfallImage& image, Preferences& preferences)
        : parameters_(parameters), image_(image), preferences_(preferences) {}

    QString folder() const;

    /// Asks for another folder. Whether one was chosen.
    bool chooseFolder(QWidget& window);

    /// To be called often. `asked`: whether pictures are to be saved; `png` makes the one of now. Returns
    /// what there is to say of a picture that was saved or could not be, otherwise nothing.
    QString saveWhenFull(bool asked, const std::function<QByteArray()>& png);

    /// What was wrong with the last one; empty for nothing.
    const QString& trouble() const { return trouble_; }

private:
    const WaterfallParameters& parameters_;
    const WaterfallImage& image_;
    Preferences& preferences_;
    ColumnNumber savedUpTo_ = 0; ///< WaterfallImage::scrolled() when the last one was saved
    QString trouble_;
};

} // namespace sonotrace
