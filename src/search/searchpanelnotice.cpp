#include "search/searchpanelnotice.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

SearchPanelNotice::SearchPanelNotice(const PanelNotice &notice, QWidget *parent)
    : QWidget(parent)
    , m_message(new QLabel(notice.message, this))
{
    setAccessibleName(tr("Notice"));
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_message->setAccessibleName(notice.message);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 16, 20, 4);
    layout->setSpacing(8);
    layout->addWidget(m_message);

    if (notice.copyLine) {
        m_copyLine = new QLineEdit(*notice.copyLine, this);
        m_copyLine->setReadOnly(true);
        m_copyLine->setAccessibleName(tr("Line to copy"));
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        m_copyLine->setFont(fixed);
        m_copyLine->setCursorPosition(0);
        m_copy = new QPushButton(tr("Copy"), this);
        m_copy->setAccessibleName(tr("Copy"));
        m_copy->setAccessibleDescription(*notice.copyLine);
        connect(m_copy, &QPushButton::clicked, this,
                [line = *notice.copyLine] { QGuiApplication::clipboard()->setText(line); });
        auto *row = new QHBoxLayout;
        row->setSpacing(8);
        row->addWidget(m_copyLine, 1);
        row->addWidget(m_copy);
        layout->addLayout(row);
    }

    if (!notice.actions.isEmpty()) {
        auto *row = new QHBoxLayout;
        row->setSpacing(8);
        row->addStretch();
        for (const PanelAction &action : notice.actions) {
            auto *button = new QPushButton(action.label, this);
            button->setAccessibleName(action.label);
            connect(button, &QPushButton::clicked, this, [run = action.run] {
                if (run)
                    run();
            });
            row->addWidget(button);
            m_buttons.append(button);
        }
        layout->addLayout(row);
    }
}
