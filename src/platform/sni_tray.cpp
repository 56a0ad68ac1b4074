#include "platform/sni_tray.h"

#include "common/log.h"
#include "common/mainthread.h"
#include "platform/dbusmenuexporter.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QImage>
#include <QMenu>
#include <QtEndian>

namespace {

// An image as the item sends it: ARGB32 in network byte order, (iiay).
struct SniPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
    bool operator==(const SniPixmap &) const = default;
};
using SniPixmaps = QList<SniPixmap>;

// (sa(iiay)ss): icon name, icon images, title, text.
struct SniToolTip {
    QString iconName;
    SniPixmaps icon;
    QString title;
    QString text;
    bool operator==(const SniToolTip &) const = default;
};

} // namespace

Q_DECLARE_METATYPE(SniPixmap)
Q_DECLARE_METATYPE(SniToolTip)

namespace {

QDBusArgument &operator<<(QDBusArgument &argument, const SniPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SniPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const SniToolTip &tip)
{
    argument.beginStructure();
    argument << tip.iconName << tip.icon << tip.title << tip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SniToolTip &tip)
{
    argument.beginStructure();
    argument >> tip.iconName >> tip.icon >> tip.title >> tip.text;
    argument.endStructure();
    return argument;
}

void registerTypes()
{
    static const bool registered = [] {
        qDBusRegisterMetaType<SniPixmap>();
        qDBusRegisterMetaType<SniPixmaps>();
        qDBusRegisterMetaType<SniToolTip>();
        return true;
    }();
    Q_UNUSED(registered);
}

// The sizes panels ask for most; they scale the nearest one.
SniPixmaps pixmapsOf(const QIcon &icon)
{
    SniPixmaps result;
    for (const int size : {16, 22, 24, 32, 48}) {
        QImage image = icon.pixmap(QSize(size, size), 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
        if (image.isNull())
            continue;
        SniPixmap pixmap{image.width(), image.height(), {}};
        pixmap.bytes.resize(qsizetype(image.width()) * image.height() * 4);
        auto *out = reinterpret_cast<quint32 *>(pixmap.bytes.data());
        for (int y = 0; y < image.height(); ++y) {
            const auto *line = reinterpret_cast<const quint32 *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x)
                *out++ = qToBigEndian(line[x]);
        }
        result.append(pixmap);
    }
    return result;
}

} // namespace

// The org.kde.StatusNotifierItem object the panel talks to.
class StatusNotifierItem : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(SniPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ emptyName)
    Q_PROPERTY(SniPixmaps OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ emptyName)
    Q_PROPERTY(SniPixmaps AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ emptyName)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    explicit StatusNotifierItem(SniTray &tray)
        : QObject(&tray)
        , m_tray(tray)
    {
    }

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("Quillon"); }
    QString title() const { return QStringLiteral("Quillon"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconName() const { return m_iconName; }
    SniPixmaps iconPixmap() const { return m_pixmaps; }
    QString iconThemePath() const { return m_iconThemePath; }
    QString emptyName() const { return {}; }
    SniPixmaps noPixmaps() const { return {}; }
    SniToolTip toolTip() const { return {QString(), {}, m_toolTip, QString()}; }
    bool itemIsMenu() const { return m_tray.m_mode == SniTray::MenuMode::Exported; }
    QDBusObjectPath menu() const
    {
        return QDBusObjectPath(itemIsMenu() ? QLatin1String(SniTray::menuPath) : QLatin1String("/NO_DBUSMENU"));
    }

    // Panels that find the name draw the glyph in their own colour; the
    // others take the pixels.
    void setIcon(const TrayIcon &icon, const QString &toolTip)
    {
        m_iconName = icon.symbolicName;
        m_iconThemePath = icon.themeFolder;
        m_pixmaps = pixmapsOf(icon.drawing);
        m_toolTip = toolTip;
        Q_EMIT NewIcon();
        Q_EMIT NewToolTip();
    }

public Q_SLOTS:
    void Activate(int x, int y) { m_tray.clicked(x, y); }
    void ContextMenu(int x, int y) { m_tray.clicked(x, y); }
    void SecondaryActivate(int x, int y) { m_tray.middleClicked(x, y); }
    void Scroll(int, const QString &) { }

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString &status);

private:
    SniTray &m_tray;
    QString m_iconName;
    QString m_iconThemePath;
    SniPixmaps m_pixmaps;
    QString m_toolTip;
};

SniTray::SniTray(MenuMode mode, const QDBusConnection &bus, QObject *parent)
    : Tray(parent)
    , m_mode(mode)
    , m_bus(bus)
    , m_item(nullptr)
    , m_watcher(
          new QDBusServiceWatcher(QLatin1String(watcherService), bus, QDBusServiceWatcher::WatchForRegistration, this))
{
    QUILLON_ASSERT_MAIN_THREAD();
    registerTypes();
    static int count = 0;
    m_service = QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
    m_item = new StatusNotifierItem(*this);
    // A panel restarted (or started after us) has a new watcher to tell.
    connect(m_watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (m_shown)
            registerWithWatcher();
    });
}

SniTray::~SniTray()
{
    if (m_shown) {
        m_bus.unregisterObject(QLatin1String(itemPath));
        m_bus.unregisterObject(QLatin1String(menuPath));
        m_bus.unregisterService(m_service);
    }
}

TrayKind SniTray::kind() const
{
    return m_mode == MenuMode::Exported ? TrayKind::Exported : TrayKind::PopUp;
}

void SniTray::show(const TrayIcon &icon, const QString &toolTip)
{
    QUILLON_ASSERT_MAIN_THREAD();
    m_item->setIcon(icon, toolTip);
    if (m_shown)
        return;
    m_shown = true;
    if (!m_bus.registerObject(QLatin1String(itemPath), m_item,
                              QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals
                                  | QDBusConnection::ExportAllProperties)) {
        qCWarning(lcTray) << "Could not publish the tray item:" << m_bus.lastError().message();
    }
    if (!m_bus.registerService(m_service))
        qCWarning(lcTray) << "Could not own" << m_service << ":" << m_bus.lastError().message();
    registerWithWatcher();
}

void SniTray::registerWithWatcher()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QLatin1String(watcherService), QStringLiteral("/StatusNotifierWatcher"),
                                       QLatin1String(watcherService), QStringLiteral("RegisterStatusNotifierItem"));
    // By the connection's own name: every watcher takes that, while GNOME's
    // AppIndicator extension fails on the well-known one.
    call << m_bus.baseService();
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        if (done->isError())
            qCWarning(lcTray) << "The panel's tray did not take the icon:" << done->error().message();
        else
            qCDebug(lcTray) << "The icon is registered with the panel's tray";
    });
}

std::optional<QRect> SniTray::iconGeometry() const
{
    // The panel says where it was clicked, not where the icon is: the click
    // stands for the icon.
    if (!m_lastClick)
        return std::nullopt;
    return QRect(*m_lastClick, QSize(1, 1));
}

void SniTray::popUp(QMenu *menu, const QPoint &fallback)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_mode == MenuMode::Exported) {
        qCDebug(lcTray) << "The panel draws the menu; nothing to pop up";
        return;
    }
    menu->popup(m_lastClick.value_or(fallback));
}

void SniTray::exportMenu(QMenu *menu)
{
    QUILLON_ASSERT_MAIN_THREAD();
    if (m_mode != MenuMode::Exported || m_exporter)
        return;
    m_exporter = new DBusMenuExporter(menu, this);
    m_exporter->publish(m_bus, QLatin1String(menuPath));
}

void SniTray::clicked(int x, int y)
{
    noteClick(x, y);
    Q_EMIT activated(m_lastClick);
}

void SniTray::middleClicked(int x, int y)
{
    noteClick(x, y);
    Q_EMIT secondaryActivated(m_lastClick);
}

void SniTray::noteClick(int x, int y)
{
    // Panels that do not know where the click was send the origin.
    if (x != 0 || y != 0)
        m_lastClick = QPoint(x, y);
}

#include "sni_tray.moc"
