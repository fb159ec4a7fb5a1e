#pragma once

#include <dataviews/common/images/ImagesExport.h>

#include <dataviews/platform/signals/Signal.h>

#include <QSize>

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

class QImage;

/// A loader that decodes pictures in the background, at the size in which they are shown.
///
/// A view whose loader has this interface too asks it instead of waiting for pictures. All of it is used on the GUI
/// thread.
class DATAVIEWS_IMAGES_EXPORT AsyncImageLoaderInterface
{
public:
    AsyncImageLoaderInterface();
    AsyncImageLoaderInterface(const AsyncImageLoaderInterface&) = delete;
    AsyncImageLoaderInterface& operator=(const AsyncImageLoaderInterface&) = delete;
    virtual ~AsyncImageLoaderInterface();

    /// The picture in the file \p path (absolute, UTF-8), fitted into \p size (pixels, both sides positive) with its
    /// proportions kept, if it is finished; else an empty pointer, and the picture is decoded in the background.
    /// A picture that cannot be shown is finished too: a null QImage, and problem() says why. Not to be changed.
    virtual boost::shared_ptr<QImage> request(const std::string& path, const QSize& size) = 0;

    /// Only these files are on the screen, most important first: what was requested of others and is not being
    /// decoded yet will not be, until it is requested again.
    virtual void setVisible(const std::vector<std::string>& paths) = 0;

    /// These files may be on the screen next, most likely first: their pictures, fitted into \p size, are decoded when
    /// nothing that was requested waits, and no signal is raised for them. Takes the place of what was said before; a
    /// loader need not care, as the one here.
    virtual void prefetch(const std::vector<std::string>& paths, const QSize& size);

    /// Why the picture in \p path cannot be shown, a sentence without a full stop, UTF-8; empty as long as nothing
    /// is known against it.
    [[nodiscard]] virtual std::string problem(const std::string& path) const = 0;

    /// A picture that was requested is finished, for better or worse. Raised on the GUI thread, from its event loop.
    Signal<void(const std::string&), AsyncImageLoaderInterface> signalImageArrived;

protected:
    void emitImageArrived(const std::string& path) const { signalImageArrived(path); }

private:
    virtual void signalImageArrivedConnected() const;
};
