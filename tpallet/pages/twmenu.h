#pragma once

#include "module/tpallet_export.h"

#include <QMenu>
#include <QStringList>

namespace Ui {
class TWMenu;
}

namespace tpallet {

// A touch-sized pick list that drops down under a button: a scrollable column of large buttons,
// one per name. Choosing the current name only closes it.
class TPALLET_EXPORT TWMenu : public QMenu
{
    Q_OBJECT

public:
    explicit TWMenu(QWidget *parent = nullptr);
    ~TWMenu() override;

    // `width` is a theme size value (120 for tools and work objects, 180 for the toolset).
    void setParams(const QStringList &items, const QString &current, int width);
    void showBesideWidget(QWidget *anchor);

    QStringList items() const { return m_items; }
    QString current() const { return m_current; }
    int nominalWidth() const { return m_width; }

    // Rows shown at most before the list scrolls.
    static constexpr int kVisibleRows = 8;
    static constexpr int kRowHeight = 36;

signals:
    void selected(const QString &text);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void onItemClicked(const QString &text);

    Ui::TWMenu *m_ui;
    QStringList m_items;
    QString m_current;
    int m_width = 120;
};

} // namespace tpallet
