#pragma once

#include <QListWidget>
#include <QVariantMap>

/*
 * The operator log: the host's log history (every entry written to "tormo.log.current"), newest
 * at the bottom, errors in red and warnings in amber.
 */
class LogView : public QListWidget
{
    Q_OBJECT

public:
    explicit LogView(QWidget *parent = nullptr);
    ~LogView() override;

    // Rebuilds the list from the host's history.
    void reload();

    static QColor colourOf(const QString &level);
    static QString textOf(const QVariantMap &entry);

private:
    void addEntry(const QVariantMap &entry);
};
