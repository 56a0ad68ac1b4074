#include "app/updatewindow.h"

#include "common/log.h"
#include "platform/ownicons.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

// Release notes are the feed's HTML: their text is shown, but no image or
// style sheet they name is loaded, as that would read this machine's files
// (an <img src="file:///dev/zero"> reads until memory runs out).
class NotesBrowser : public QTextBrowser
{
public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int, const QUrl &) override { return QByteArray(); }
};

} // namespace

UpdateWindow::UpdateWindow(QString currentVersion, Open open, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_currentVersion(std::move(currentVersion))
    , m_open(std::move(open))
    , m_headline(new QLabel(this))
    , m_detail(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_notes(new NotesBrowser(this))
    , m_download(new QPushButton(tr("Download"), this))
    , m_close(new QPushButton(tr("Close"), this))
{
    setWindowTitle(tr("Software Update"));
    setWindowIcon(applicationIcon());
    setAttribute(Qt::WA_DeleteOnClose, false);
    setMinimumWidth(420);

    QFont bold = m_headline->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.15);
    m_headline->setFont(bold);
    m_detail->setWordWrap(true);
    m_progress->setRange(0, 0);
    m_notes->setOpenExternalLinks(false);
    m_notes->setOpenLinks(false);
    connect(m_notes, &QTextBrowser::anchorClicked, this, &UpdateWindow::openLink);
    m_notes->setMinimumHeight(160);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_download, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_close, QDialogButtonBox::RejectRole);
    connect(m_download, &QPushButton::clicked, this, [this] {
        openLink(m_downloadURL);
        close();
    });
    connect(m_close, &QPushButton::clicked, this, &QWidget::close);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_headline);
    layout->addWidget(m_detail);
    layout->addWidget(m_progress);
    layout->addWidget(m_notes, 1);
    layout->addWidget(buttons);
}

QString UpdateWindow::headline() const
{
    return m_headline->text();
}

void UpdateWindow::closeEvent(QCloseEvent *event)
{
    if (std::exchange(m_checking, false))
        Q_EMIT checkCancelled();
    QWidget::closeEvent(event);
}

void UpdateWindow::showChecking()
{
    m_checking = true;
    m_headline->setText(tr("Checking for updates…"));
    m_detail->clear();
    m_progress->show();
    m_notes->hide();
    m_download->hide();
    m_close->setText(tr("Cancel"));
    present();
}

void UpdateWindow::showResult(const UpdateCheckResult &result)
{
    m_checking = false;
    m_progress->hide();
    m_close->setText(tr("Close"));
    m_notes->hide();
    m_download->hide();
    if (const auto *found = std::get_if<UpdateFound>(&result)) {
        const AppcastItem &item = found->item;
        m_headline->setText(tr("Quillon %1 is available").arg(item.shortVersion));
        m_detail->setText(tr("You have version %1.").arg(m_currentVersion));
        QString notes = item.description;
        if (isWebLink(item.releaseNotesURL))
            notes += QStringLiteral("<p><a href=\"%1\">%2</a></p>")
                         .arg(item.releaseNotesURL.toString(QUrl::FullyEncoded).toHtmlEscaped(), tr("Release notes"));
        if (!notes.isEmpty()) {
            m_notes->setHtml(notes);
            m_notes->show();
        }
        // The download itself, else the page that describes the release.
        m_downloadURL.clear();
        for (const QUrl &url : {item.downloadURL, item.infoURL, item.releaseNotesURL}) {
            if (isWebLink(url)) {
                m_downloadURL = url;
                break;
            }
        }
        m_download->setVisible(!m_downloadURL.isEmpty());
        m_close->setText(tr("Later"));
    } else if (std::holds_alternative<UpToDate>(result)) {
        m_headline->setText(tr("You’re up to date!"));
        m_detail->setText(tr("Quillon %1 is the newest version available.").arg(m_currentVersion));
    } else {
        m_headline->setText(tr("Update check failed"));
        m_detail->setText(std::get<CheckFailed>(result).error);
    }
    present();
}

void UpdateWindow::openLink(const QUrl &url)
{
    // Everything here comes from the feed: only web pages are opened.
    if (!isWebLink(url)) {
        qCWarning(lcApp, "Did not open \"%s\" from the update feed: only http and https links are opened",
                  qUtf8Printable(url.toString()));
        return;
    }
    m_open(url);
}

void UpdateWindow::present()
{
    adjustSize();
    show();
    raise();
    activateWindow();
}
