#include "logview.h"

#include <tcore/managerhelper.h>

#include <QColor>

LogView::LogView(QWidget *parent)
    : QListWidget(parent)
{
    setObjectName(QStringLiteral("lstLog"));
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::NoFocus);
    setWordWrap(false);
    setUniformItemSizes(true);
    connect(tcore::ManagerHelper::instance(), &tcore::ManagerHelper::logEntryAdded, this, &LogView::addEntry);
    reload();
}

LogView::~LogView() = default;

void LogView::reload()
{
    clear();
    const QList<QVariantMap> history = tcore::ManagerHelper::instance()->logHistory();
    for (const QVariantMap &entry : history)
        addEntry(entry);
}

QColor LogView::colourOf(const QString &level)
{
    if (level == QLatin1String("error"))
        return QColor(QStringLiteral("#e53935"));
    if (level == QLatin1String("warning"))
        return QColor(QStringLiteral("#f0a020"));
    return QColor(QStringLiteral("#d0d4da"));
}

QString LogView::textOf(const QVariantMap &entry)
{
    QString when = entry.value(QStringLiteral("date_time")).toString();
    const int slash = when.indexOf('/');
    if (slash >= 0)
        when = when.mid(slash + 1);
    QString line = when + QStringLiteral("  ") + entry.value(QStringLiteral("title")).toString();
    const QString text = entry.value(QStringLiteral("text")).toString();
    if (!text.isEmpty())
        line += QStringLiteral(": ") + text;
    return line;
}

void LogView::addEntry(const QVariantMap &entry)
{
    auto *item = new QListWidgetItem(textOf(entry), this);
    const QString level = entry.value(QStringLiteral("level")).toString();
    item->setData(Qt::UserRole, level);
    item->setForeground(colourOf(level));
    item->setToolTip(entry.value(QStringLiteral("date_time")).toString());
    while (count() > tcore::ManagerHelper::historyLimit())
        delete takeItem(0);
    scrollToBottom();
}
