#pragma once

#include "orbadwel_export.h"

#include <QHash>
#include <QStackedWidget>
#include <QString>

namespace dwel {

class BModule;

/*
 * The host's page container: one stacked widget holding every module page by name. The shell
 * shows a page by name when its navigation entry is chosen.
 */
class ORBADWEL_EXPORT CenterWidget : public QStackedWidget
{
    Q_OBJECT

public:
    explicit CenterWidget(QWidget *parent = nullptr);
    ~CenterWidget() override;

    // Adds `widget` under `name` to the container the host created for `module` (the shared one).
    static bool addPage(BModule *module, const QString &name, QWidget *widget);

    bool hasPage(const QString &name) const;
    QWidget *page(const QString &name) const;
    QStringList pageNames() const;
    bool showPage(const QString &name);
    QString currentPageName() const;

    // The process-wide container (created on first use).
    static CenterWidget *instance();

signals:
    void pageAdded(const QString &name);
    void pageShown(const QString &name);

private:
    QHash<QString, QWidget *> m_pages;
};

} // namespace dwel

// The page container in which `module` places its pages.
ORBADWEL_EXPORT dwel::CenterWidget *instantiatedCenterWidget(dwel::BModule *module);
