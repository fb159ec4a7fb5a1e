#pragma once

#include <analyzer/export/exportPicture.h>

#include <QDialog>
#include <QSize>

class QSpinBox;

namespace analyzer {

/// Asks how large a picture of a view shall be. At first it has twice the resolution of the screen.
class PictureDialog : public QDialog
{
    Q_OBJECT

public:
    /// \p onScreen is the size of the view in device-independent pixels.
    explicit PictureDialog(const QSize& onScreen, QWidget* parent = nullptr);
    PictureDialog(const PictureDialog&) = delete;
    PictureDialog& operator=(const PictureDialog&) = delete;
    ~PictureDialog() override;

    [[nodiscard]] PictureOptions options() const;

private:
    void resolutionChanged(int dpi);

    QSpinBox* m_width;
    QSpinBox* m_height;
    QSpinBox* m_resolution;
    int m_formerResolution;
};

} // namespace analyzer
