#include <analyzer/views/ImageCanvasLevels.h>
#include <analyzer/views/ImageDiffComputer.h>
#include <analyzer/views/ImageDiffPicture.h>

#include <QtConcurrentRun>

#include <boost/make_shared.hpp>

#include <new>
#include <utility>

namespace analyzer {

namespace {

void compute(const ImageDiffComputer::Request& request, ImageDiffComputer::Result& result)
{
    result.mode = request.mode;
    result.gain = request.gain;
    const QImage second = scaledLike(request.first, request.second);
    if (second.isNull()) {
        return; // no memory
    }
    if (request.mode == ImageDiffMode::Blend) {
        result.levels = imageCanvasLevels(imageBlend(request.first, second, request.percent));
        return;
    }
    ImageDiffPicture difference = imageDifference(request.first, second, request.gain);
    result.levels = imageCanvasLevels(std::move(difference.image));
    result.mean = difference.mean;
    result.largest = difference.largest;
}

} // namespace

ImageDiffComputer::ImageDiffComputer()
{
    QObject::connect(&m_watcher, &QFutureWatcherBase::finished, &m_watcher, [this] { finish(); });
}

ImageDiffComputer::~ImageDiffComputer() = default;

void ImageDiffComputer::request(const Request& request)
{
    m_wanted = request;
    if (!m_computing) {
        start();
    }
}

void ImageDiffComputer::cancel()
{
    m_wanted.reset();
    m_isWanted = false;
}

void ImageDiffComputer::start()
{
    m_computing = boost::make_shared<Result>();
    m_isWanted = true;
    // The job owns all that it touches.
    m_watcher.setFuture(
        QtConcurrent::run([request = *std::exchange(m_wanted, std::nullopt), result = m_computing] {
            try {
                compute(request, *result);
            } catch (const std::bad_alloc&) {
                result->levels.clear();
            }
        }));
}

void ImageDiffComputer::finish()
{
    const boost::shared_ptr<Result> result = std::move(m_computing);
    m_computing.reset();
    const bool isWanted = std::exchange(m_isWanted, false);
    if (m_wanted) {
        start();
    }
    if (isWanted) {
        signalComputed(*result);
    }
}

} // namespace analyzer
