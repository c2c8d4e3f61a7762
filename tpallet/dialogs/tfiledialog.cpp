#include "dialogs/tfiledialog.h"
#include "ui_tfiledialog.h"

#include <orba/moduleobject.h>
#include <tcore/managerhelper.h>

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QListView>
#include <QPointer>
#include <QProcess>
#include <QPushButton>

namespace {

const char *const kDefaultRoot = "/media/korvel";
const char *const kRootNode = "tormo.usb.root";
const char *const kPresentNode = "tormo.usb.present";
const char *const kRootEnv = "TPALLET_USB_ROOT";
const char *const kPresentEnv = "TPALLET_USB_PRESENT";
constexpr int kProbeTimeoutMs = 30000;

// Presence named by the host or the environment; false when neither says.
bool presenceOverride(bool *present)
{
    const orba::ModuleObject *node = orba::m(QString::fromLatin1(kPresentNode));
    if (node->hasValue()) {
        *present = node->getBool(false);
        return true;
    }
    const QString env = qEnvironmentVariable(kPresentEnv).trimmed().toLower();
    if (env == QLatin1String("1") || env == QLatin1String("true") || env == QLatin1String("yes")) {
        *present = true;
        return true;
    }
    if (env == QLatin1String("0") || env == QLatin1String("false") || env == QLatin1String("no")) {
        *present = false;
        return true;
    }
    return false;
}

} // namespace

tFileDialog::tFileDialog(QWidget *parent, const QString &caption, const QString &root)
    : QDialog(parent)
    , m_ui(new Ui::tFileDialog)
    , m_model(new QFileSystemModel(this))
    , m_root(QDir::cleanPath(root))
{
    m_ui->setupUi(this);
    // A list that takes the focus makes its first entry current by itself, which would count as
    // the operator's choice; entries are chosen by touch only.
    m_ui->listView->setFocusPolicy(Qt::NoFocus);
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
    m_ui->lblTitle->setText(caption);
    setProperty("caption", caption);

    connect(m_ui->btnOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->btnHome, &QPushButton::clicked, this, &tFileDialog::goHome);
    connect(m_ui->btnBack, &QPushButton::clicked, this, &tFileDialog::goBack);

    // Links could lead anywhere on the pendant: only what really lies on the disk is shown.
    m_model->setFilter(QDir::AllEntries | QDir::AllDirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    m_model->setReadOnly(true);
    const QFileInfo info(m_root);
    if (!root.isEmpty() && info.isDir()) {
        m_canonicalRoot = info.canonicalFilePath();
        m_model->setRootPath(m_root);
        m_ui->listView->setModel(m_model);
        m_ui->listView->setRootIndex(m_model->index(m_root));
        connect(m_ui->listView, &QAbstractItemView::clicked, this, &tFileDialog::selectEntry);
        connect(m_ui->listView, &QAbstractItemView::doubleClicked, this, &tFileDialog::openEntry);
        // The disk may be pulled while the dialog is open.
        connect(m_model, &QFileSystemModel::directoryLoaded, this, &tFileDialog::onRootLost);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, &tFileDialog::onRootLost);
    }
    connect(m_ui->lineEdit, &QLineEdit::textChanged, this, &tFileDialog::refreshOkBtn);
    refreshOkBtn();
}

tFileDialog::~tFileDialog()
{
    delete m_ui;
}

void tFileDialog::setScheme(bool on)
{
    m_scheme = on;
    if (!on)
        return;
    m_ui->lineEdit->setReadOnly(true);
    m_ui->btnOk->setEnabled(true);
    m_model->setFilter(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
}

void tFileDialog::setSave(bool on)
{
    m_save = on;
    m_ui->lineEdit->setReadOnly(!on);
    m_ui->btnOk->setEnabled(false);
}

bool tFileDialog::isInsideRoot(const QString &path) const
{
    if (m_canonicalRoot.isEmpty())
        return false;
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (canonical.isEmpty())
        return false;
    const QString prefix = m_canonicalRoot.endsWith(QLatin1Char('/')) ? m_canonicalRoot : m_canonicalRoot + QLatin1Char('/');
    return canonical == m_canonicalRoot || canonical.startsWith(prefix);
}

void tFileDialog::onRootLost()
{
    if (isVisible() && !QFileInfo(m_root).isDir())
        reject();
}

void tFileDialog::refreshOkBtn()
{
    if (m_scheme)
        return;
    if (m_save) {
        m_ui->btnOk->setEnabled(!m_ui->lineEdit->text().simplified().isEmpty());
        return;
    }
    bool file = false;
    if (m_ui->listView->model()) {
        const QModelIndex current = m_ui->listView->currentIndex();
        file = current.isValid() && !m_model->isDir(current) && isInsideRoot(m_model->filePath(current));
    }
    m_ui->btnOk->setEnabled(file);
}

QString tFileDialog::selectedFileName() const
{
    if (!m_ui->listView->model())
        return m_root;
    const QModelIndex current = m_ui->listView->currentIndex();
    if (current.isValid()) {
        const QString path = m_model->filePath(current);
        if (isInsideRoot(path))
            return path;
    }
    return m_model->rootPath();
}

QString tFileDialog::saveFileName() const
{
    const QString text = m_ui->lineEdit->text().simplified();
    if (text.isEmpty())
        return QString();
    QString folder = m_root;
    if (m_ui->listView->model()) {
        const QModelIndex shown = m_ui->listView->rootIndex();
        if (shown.isValid() && isInsideRoot(m_model->filePath(shown)))
            folder = m_model->filePath(shown);
    }
    return folder + QLatin1Char('/') + text;
}

void tFileDialog::selectEntry(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    if (m_model->isDir(index))
        m_ui->lineEdit->clear();
    else
        m_ui->lineEdit->setText(m_model->fileName(index));
    refreshOkBtn();
}

void tFileDialog::openEntry(const QModelIndex &index)
{
    if (!index.isValid() || !isInsideRoot(m_model->filePath(index)))
        return;
    if (!m_model->isDir(index)) {
        if (!m_scheme)
            accept();
        return;
    }
    m_history.append(QPersistentModelIndex(m_ui->listView->rootIndex()));
    m_ui->listView->setRootIndex(index);
    // Nothing in the folder is chosen yet: OK then means the folder shown is not picked.
    m_ui->listView->setCurrentIndex(QModelIndex());
    refreshOkBtn();
}

void tFileDialog::goHome()
{
    m_history.clear();
    if (m_ui->listView->model()) {
        const QModelIndex home = m_model->index(m_root);
        m_ui->listView->setRootIndex(home);
        m_ui->listView->setCurrentIndex(home);
    }
    refreshOkBtn();
}

void tFileDialog::goBack()
{
    if (m_history.isEmpty())
        return;
    QModelIndex previous = m_history.takeLast();
    // A folder that vanished meanwhile leaves nothing to go back to but the root.
    if (!previous.isValid())
        previous = m_model->index(m_root);
    if (m_ui->listView->model()) {
        m_ui->listView->setRootIndex(previous);
        m_ui->listView->setCurrentIndex(previous);
    }
    refreshOkBtn();
}

void tFileDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        m_ui->lblTitle->setText(property("caption").toString());
    }
    QDialog::changeEvent(event);
}

QString tFileDialog::defaultUsbRoot()
{
    return QString::fromLatin1(kDefaultRoot);
}

QString tFileDialog::usbRoot()
{
    const orba::ModuleObject *node = orba::m(QString::fromLatin1(kRootNode));
    const QString fromHost = node->getString();
    if (!fromHost.isEmpty())
        return fromHost;
    const QString fromEnv = qEnvironmentVariable(kRootEnv);
    if (!fromEnv.isEmpty())
        return fromEnv;
    return defaultUsbRoot();
}

bool tFileDialog::probeUsbPartition()
{
    QProcess process;
    process.start(QStringLiteral("/bin/bash"),
                  {QStringLiteral("-c"),
                   QStringLiteral("cat /proc/partitions | grep -v mmcblk | grep -v ram | sed -n '$p' | awk '{print $4}'")},
                  QIODevice::ReadWrite);
    if (!process.waitForFinished(kProbeTimeoutMs)) {
        process.kill();
        process.waitForFinished(1000);
        return false;
    }
    const QByteArray out = process.readAllStandardOutput();
    // Up to the first NUL byte.
    return !QString::fromLocal8Bit(out.constData()).simplified().isEmpty();
}

QString tFileDialog::checkUsbDir()
{
    const QString root = QDir::cleanPath(usbRoot());
    bool present = false;
    if (!presenceOverride(&present))
        present = probeUsbPartition();
    if (present && QFileInfo(root).isDir())
        return root;
    tcore::ManagerHelper::instance()->throwLog(nullptr, QStringLiteral("warning"), tr("please insert the USB disk"));
    return QString();
}

int tFileDialog::SystemFileSync()
{
    QProcess::execute(QStringLiteral("sync"), {});
    return QProcess::execute(QStringLiteral("sync"), {});
}

QString tFileDialog::getOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                                     const QString &filter)
{
    Q_UNUSED(dir)
    Q_UNUSED(filter)
    const QString root = checkUsbDir();
    if (root.isEmpty())
        return QString();
    QPointer<tFileDialog> dialog = new tFileDialog(parent, caption, root);
    dialog->setSave(false);
    const int result = dialog->exec();
    // The parent may have taken the dialog with it.
    if (!dialog)
        return QString();
    const QString chosen = result == QDialog::Accepted ? dialog->selectedFileName() : QString();
    delete dialog.data();
    return chosen;
}

QString tFileDialog::pickFolder(QWidget *parent, const QString &caption)
{
    const QString root = checkUsbDir();
    if (root.isEmpty())
        return QString();
    QPointer<tFileDialog> dialog = new tFileDialog(parent, caption, root);
    dialog->setScheme(true);
    const int result = dialog->exec();
    if (!dialog)
        return QString();
    QString chosen;
    if (result == QDialog::Accepted) {
        chosen = dialog->selectedFileName();
        // The disk's root itself is no choice.
        if (QDir::cleanPath(chosen) == dialog->rootPath())
            chosen.clear();
    }
    delete dialog.data();
    return chosen;
}

QString tFileDialog::getSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                                     const QString &fileName, const QString &filter)
{
    Q_UNUSED(dir)
    Q_UNUSED(filter)
    if (fileName.isEmpty())
        return QString();
    const QString folder = pickFolder(parent, caption);
    return folder.isEmpty() ? QString() : folder + QLatin1Char('/') + fileName;
}

QString tFileDialog::getExistingDirectory(QWidget *parent, const QString &caption, const QString &dir)
{
    Q_UNUSED(dir)
    return pickFolder(parent, caption);
}
