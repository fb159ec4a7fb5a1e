#include <analyzer/views/ImageCanvasLevels.h>
#include <analyzer/views/SelectedImageLoader.h>

#include <dataviews/common/images/ImageCache.h>
#include <dataviews/common/images/ImageFileLoaderInterface.h>
#include <dataviews/common/images/readImageFile.h>

#include <QtConcurrentRun>

#include <boost/make_shared.hpp>

#include <exception>
#include <utility>

namespace analyzer {

namespace {

void read(const ImageFileLoaderInterface& loader, SelectedPicture& picture)
{
    picture.shared = loader.image(picture.path);
    QImage image = *picture.shared;
    if (image.isNull()) {
        // The cache does not say why; another look does, or finds a file that has been mended since.
        ImageFileReading reading = readImageFile(picture.path);
        picture.problem = std::move(reading.problem);
        image = std::move(reading.image);
    }
    if (image.isNull()) {
        return;
    }
    image = uprightImage(image, picture.path);
    if (image.isNull()) {
        picture.problem = "There is not enough memory to turn the picture upright";
        return;
    }
    picture.levels = imageCanvasLevels(std::move(image));
}

} // namespace

SelectedImageLoader::SelectedImageLoader(boost::shared_ptr<ImageCache> cache)
    : m_cache(std::move(cache))
{
    QObject::connect(&m_watcher, &QFutureWatcherBase::finished, &m_watcher, [this] { finish(); });
}

SelectedImageLoader::~SelectedImageLoader() = default;

void SelectedImageLoader::request(const std::string& path)
{
    m_wanted = path;
    if (!m_reading) {
        start();
    }
}

void SelectedImageLoader::cancel()
{
    m_wanted.reset();
}

void SelectedImageLoader::start()
{
    m_reading = boost::make_shared<SelectedPicture>();
    m_reading->path = *m_wanted;
    // A loader of its own, for a loader keeps every picture that it ever gave. The job owns all that it touches.
    m_watcher.setFuture(QtConcurrent::run([picture = m_reading, loader = m_cache->imageLoader()] {
        try {
            read(*loader, *picture);
        } catch (const std::exception& error) {
            picture->levels.clear();
            picture->problem = error.what();
        }
    }));
}

void SelectedImageLoader::finish()
{
    const boost::shared_ptr<SelectedPicture> picture = std::move(m_reading);
    m_reading.reset();
    if (!m_wanted) {
        return;
    }
    if (*m_wanted != picture->path) {
        start();
        return;
    }
    m_wanted.reset();
    signalArrived(*picture);
}

} // namespace analyzer
