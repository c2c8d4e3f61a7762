#include "mainwindow.h"

#include "jogpanel.h"
#include "logview.h"
#include "navigationview.h"
#include "shelltheme.h"
#include "shelltranslations.h"
#include "statusbar.h"
#include "virtualkeyboard.h"

#include <dwel/centerwidget.h>
#include <tcore/managerhelper.h>

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

// The shell's resources live in a static library: they must be registered by hand.
static void initPendantResources()
{
    Q_INIT_RESOURCE(pendant);
}

MainWindow::MainWindow(QWidget *parent)
    : QWidget(parent)
{
    initPendantResources();
    shelltranslations::install();
    shelltheme::apply();
    setObjectName(QStringLiteral("mainWindow"));
    setWindowTitle(QStringLiteral("tpendant"));
    resize(Width, Height);

    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);

    m_statusBar = new StatusBar(this);
    m_statusBar->setFixedHeight(60);
    outer->addWidget(m_statusBar);

    auto *body = new QHBoxLayout;
    body->setContentsMargins(0, 0, 0, 0);
    body->setSpacing(0);
    outer->addLayout(body, 1);

    m_navigation = new NavigationView(this);
    m_navigation->setFixedWidth(NavWidth);
    body->addWidget(m_navigation);

    auto *middle = new QVBoxLayout;
    middle->setContentsMargins(0, 0, 0, 0);
    middle->setSpacing(0);
    body->addLayout(middle, 1);

    auto *header = new QWidget(this);
    header->setObjectName(QStringLiteral("pageHeader"));
    auto *headerLayout = new QHBoxLayout(header);
    headerLayout->setContentsMargins(4, 2, 6, 2);
    m_pageTitle = new QLabel(header);
    m_pageTitle->setObjectName(QStringLiteral("lblPageTitle"));
    headerLayout->addWidget(m_pageTitle, 1);
    m_jogToggle = new QPushButton(header);
    m_jogToggle->setObjectName(QStringLiteral("btnToggleJog"));
    m_jogToggle->setCheckable(true);
    m_jogToggle->setChecked(true);
    headerLayout->addWidget(m_jogToggle);
    middle->addWidget(header);

    dwel::CenterWidget *center = dwel::CenterWidget::instance();
    center->setParent(this);
    m_center = center;
    // A page wider than the room left scrolls instead of growing the window past the panel size.
    auto *scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("pageScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(center);
    middle->addWidget(scroll, 1);

    m_log = new LogView(this);
    m_log->setFixedHeight(132);
    middle->addWidget(m_log);

    m_jogDock = new QWidget(this);
    m_jogDock->setObjectName(QStringLiteral("jogDock"));
    auto *dockLayout = new QVBoxLayout(m_jogDock);
    dockLayout->setContentsMargins(0, 0, 0, 0);
    m_jog = new JogPanel(m_jogDock);
    dockLayout->addWidget(m_jog);
    m_jogDock->setFixedWidth(JogWidth);
    body->addWidget(m_jogDock);

    m_home = new QWidget;
    m_home->setObjectName(QStringLiteral("homePage"));
    auto *homeLayout = new QVBoxLayout(m_home);
    homeLayout->setContentsMargins(32, 24, 32, 24);
    m_homeText = new QLabel(m_home);
    m_homeText->setObjectName(QStringLiteral("lblHome"));
    m_homeText->setWordWrap(true);
    m_homeText->setTextFormat(Qt::RichText);
    m_homeText->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    homeLayout->addWidget(m_homeText, 1);
    dwel::CenterWidget::addPage(nullptr, NavigationView::homePage(), m_home);

    connect(center, &dwel::CenterWidget::pageShown, this, &MainWindow::onPageShown);
    connect(m_navigation, &NavigationView::pageRequested, this, [this](const QString &nav) { showPage(nav); });
    // Titles change with the entries and with the language: the breadcrumb follows.
    connect(m_navigation, &NavigationView::rebuilt, this, [this] {
        fitNavigation();
        onPageShown(currentPage());
    });
    connect(m_jogToggle, &QPushButton::toggled, this, &MainWindow::setJogVisible);
    retranslate();
    showPage(NavigationView::homePage());

    if (VirtualKeyboard::isAvailable()) {
        m_keyboard = std::make_unique<VirtualKeyboard>();
        if (!m_keyboard->isReady()) {
            tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("warning"), tr("No on-screen keyboard"),
                                                       m_keyboard->errorString(), 1);
        }
    }
}

void MainWindow::fitNavigation()
{
    // Entries must not be cut: the navigation takes what its longest entry needs from the page.
    m_navigation->setFixedWidth(qBound(int(NavWidth), m_navigation->preferredWidth(), int(NavMaxWidth)));
}

void MainWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        retranslate();
        emit languageChanged();
    }
}

void MainWindow::retranslate()
{
    m_jogToggle->setText(tr("Jog"));
    if (m_jogWindow)
        m_jogWindow->setWindowTitle(tr("Jog"));
}

MainWindow::~MainWindow()
{
    m_keyboard.reset();
    dockJogPanel();
    // Pages go before their container, while it can still unlist them by name.
    if (m_center) {
        for (const QString &name : m_center->pageNames())
            delete m_center->page(name);
        delete m_center.data();
    }
}

dwel::CenterWidget *MainWindow::centerWidget() const
{
    return dwel::CenterWidget::instance();
}

bool MainWindow::showPage(const QString &name)
{
    dwel::CenterWidget *center = centerWidget();
    QString nav = center->hasPage(name) ? name : m_navigation->findPage(name);
    if (nav.isEmpty() || !center->hasPage(nav))
        return false;
    return center->showPage(nav);
}

QString MainWindow::currentPage() const
{
    return centerWidget()->currentPageName();
}

void MainWindow::onPageShown(const QString &name)
{
    m_navigation->selectPage(name);
    const QString path = m_navigation->pathOfPage(name);
    m_pageTitle->setText(path.isEmpty() ? name : path);
}

void MainWindow::setHomeText(const QString &html)
{
    m_homeText->setText(html);
}

void MainWindow::setJogVisible(bool visible)
{
    if (m_jogToggle->isChecked() != visible)
        m_jogToggle->setChecked(visible);
    if (!m_jogFloating)
        m_jogDock->setVisible(visible);
}

bool MainWindow::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        // Entry widths are known once the style sheet's fonts apply.
        fitNavigation();
        break;
    case QEvent::WindowBlocked:
        floatJogPanel(QApplication::activeModalWidget());
        break;
    case QEvent::WindowUnblocked:
        dockJogPanel();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void MainWindow::floatJogPanel(QWidget *modal)
{
    if (!modal || m_jogFloating || !m_jogToggle->isChecked())
        return;
    // Questions, progress and file choosers are no place to teach points.
    if (modal->objectName() == QLatin1String("msgBox") || qobject_cast<QMessageBox *>(modal)
        || qobject_cast<QProgressDialog *>(modal) || qobject_cast<QFileDialog *>(modal))
        return;
    // A window parented to the modal dialog is not blocked by it; it carries its own panel, so
    // nothing of the main window dies with the dialog.
    m_jogWindow = new QWidget(modal, Qt::Tool | Qt::WindowStaysOnTopHint);
    m_jogWindow->setObjectName(QStringLiteral("jogWindow"));
    m_jogWindow->setWindowTitle(tr("Jog"));
    auto *layout = new QVBoxLayout(m_jogWindow);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *panel = new JogPanel(m_jogWindow);
    layout->addWidget(panel);
    m_jogWindow->resize(JogWidth, height() - m_statusBar->height());
    m_jogWindow->move(mapToGlobal(QPoint(width() - JogWidth, m_statusBar->height())));
    m_jogDock->hide();
    m_jogFloating = true;
    m_jogWindow->show();
}

void MainWindow::dockJogPanel()
{
    if (!m_jogFloating)
        return;
    m_jogFloating = false;
    if (m_jogWindow)
        m_jogWindow->deleteLater();
    m_jogWindow = nullptr;
    m_jogDock->setVisible(m_jogToggle->isChecked());
}
