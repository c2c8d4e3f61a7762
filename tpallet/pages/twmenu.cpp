#include "twmenu.h"
#include "ui_twmenu.h"

#include <tcore/thememanager.h>

#include <QGridLayout>
#include <QLayoutItem>
#include <QPushButton>
#include <QScroller>
#include <QSpacerItem>

namespace tpallet {

TWMenu::TWMenu(QWidget *parent)
    : QMenu(parent)
    , m_ui(new Ui::TWMenu)
{
    m_ui->setupUi(this);
    setObjectName(QStringLiteral("TWMenu"));
    QScroller::grabGesture(m_ui->scrollArea->viewport(), QScroller::LeftMouseButtonGesture);
}

TWMenu::~TWMenu()
{
    delete m_ui;
}

void TWMenu::setParams(const QStringList &items, const QString &current, int width)
{
    if (items != m_items)
        m_items = items;
    m_current = current;
    m_width = width;
}

void TWMenu::showBesideWidget(QWidget *anchor)
{
    if (!anchor)
        return;
    const int width = tcore::ThemeManager::getSize(m_width);
    const int rows = qBound(1, int(m_items.size()), kVisibleRows);
    setFixedSize(width, rows * tcore::ThemeManager::getSize(kRowHeight) + 2);
    show();
    raise();
    move(anchor->mapToGlobal(QPoint(0, anchor->height() + tcore::ThemeManager::getSize(1))));
}

void TWMenu::showEvent(QShowEvent *event)
{
    QGridLayout *grid = m_ui->gridLayout;
    while (QLayoutItem *item = grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const int rowHeight = qMax(kRowHeight, tcore::ThemeManager::getSize(kRowHeight));
    int row = 0;
    for (const QString &text : qAsConst(m_items)) {
        auto *button = new QPushButton(text, m_ui->wgtContent);
        button->setObjectName(QStringLiteral("btnItem%1").arg(row));
        button->setMinimumHeight(rowHeight);
        button->setFixedWidth(width());
        button->setFocusPolicy(Qt::NoFocus);
        // The current entry is marked so the operator sees what is in force.
        button->setCheckable(true);
        button->setChecked(text == m_current);
        grid->addWidget(button, row++, 0);
        connect(button, &QPushButton::clicked, this, [this, text] { onItemClicked(text); });
    }
    // Few entries sit at the top rather than spread over the menu.
    grid->addItem(new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), row, 0);
    QMenu::showEvent(event);
}

void TWMenu::onItemClicked(const QString &text)
{
    if (text != m_current)
        emit selected(text);
    close();
}

} // namespace tpallet
