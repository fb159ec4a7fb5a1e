#include <dataviews/common/images/AsyncImageCore.h>
#include <dataviews/common/images/AsyncImageLoader.h>

#include <QCoreApplication>
#include <QEvent>
#include <QImage>
#include <QObject>
#include <QScopeGuard>

#include <utility>

namespace {

QEvent::Type arrivalEvent()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

/// Brings arrivals to the thread of the loader.
class AsyncImageLoader::Receiver : public QObject
{
public:
    explicit Receiver(AsyncImageLoader& loader)
        : m_loader(&loader)
    {}

    /// The loader is going; so does this, at once or, if it was a slot that destroyed it, after the event.
    void leave()
    {
        m_loader = nullptr;
        if (m_deliveries == 0) {
            delete this;
        }
    }

    bool event(QEvent* event) override
    {
        if (event->type() != arrivalEvent()) {
            return QObject::event(event);
        }
        deliver();
        return true;
    }

private:
    void deliver();

    AsyncImageLoader* m_loader;
    int m_deliveries = 0; ///< more than one if a slot runs an event loop
};

struct AsyncImageLoader::Implementation
{
    boost::shared_ptr<AsyncImageCore> core;
    Receiver* receiver = nullptr; ///< its own, see Receiver::leave()
    std::unique_ptr<AsyncImageCore::Client> client;
};

void AsyncImageLoader::Receiver::deliver()
{
    ++m_deliveries;
    const auto atTheEnd = qScopeGuard([this] {
        --m_deliveries;
        if (m_loader != nullptr) {
            m_loader->m_implementation->core->endDelivery(*m_loader->m_implementation->client);
        } else if (m_deliveries == 0) {
            deleteLater();
        }
    });

    // Only what is there now: a slot may take longer than the workers need for the next picture.
    std::size_t count =
        m_loader->m_implementation->core->beginDelivery(*m_loader->m_implementation->client);
    std::string path;
    while (m_loader != nullptr && count-- > 0
           && m_loader->m_implementation->core->takeArrival(
               *m_loader->m_implementation->client, path)) {
        m_loader->emitImageArrived(path);
    }
}

AsyncImageLoader::AsyncImageLoader(boost::shared_ptr<AsyncImageCore> core)
    : m_implementation(std::make_unique<Implementation>())
{
    // Registered here, not by the first worker that has a picture.
    const QEvent::Type type = arrivalEvent();
    auto receiver = std::make_unique<Receiver>(*this);
    m_implementation->client = core->addClient([receiver = receiver.get(), type] {
        QCoreApplication::postEvent(receiver, new QEvent(type));
    });
    m_implementation->receiver = receiver.release();
    m_implementation->core = std::move(core);
}

AsyncImageLoader::~AsyncImageLoader()
{
    // First, for from then on nobody posts to the receiver.
    m_implementation->core->removeClient(std::move(m_implementation->client));
    m_implementation->receiver->leave();
}

boost::shared_ptr<QImage> AsyncImageLoader::image(const std::string& path) const
{
    return m_implementation->core->fullSizeImage(path);
}

boost::shared_ptr<QImage> AsyncImageLoader::request(const std::string& path, const QSize& size)
{
    Q_ASSERT_X(!size.isEmpty(), "AsyncImageLoader::request", "both sides must be positive");
    return m_implementation->core->request(*m_implementation->client, path, size);
}

void AsyncImageLoader::setVisible(const std::vector<std::string>& paths)
{
    m_implementation->core->setVisible(*m_implementation->client, paths);
}

void AsyncImageLoader::prefetch(const std::vector<std::string>& paths, const QSize& size)
{
    Q_ASSERT_X(!size.isEmpty(), "AsyncImageLoader::prefetch", "both sides must be positive");
    m_implementation->core->prefetch(*m_implementation->client, paths, size);
}

std::string AsyncImageLoader::problem(const std::string& path) const
{
    return m_implementation->core->problem(path);
}
