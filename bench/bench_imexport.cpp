// Export and import of 20 pallets of 1200 places through the exchange dialog (the module's own
// path: overlay on the default pallet, XML file, reading, checking, "tray.add_one" for each),
// set against the bare XML write and read of the same tree measured in the same run.
#include "benchpallet.h"
#include "controller.h"
#include "dialogs/imexportdialog.h"
#include "dialogs/tfiledialog.h"
#include "hugeheap.h"
#include "module/pointgen.h"
#include "module/toolset.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"

#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kPallets = 20;

orba::ModuleObject *makePallet(int n)
{
    return appendFullPallet(tpallet::palletsNode(), QStringLiteral("bench%1").arg(n), n, true);
}

// Picks `path` in the file dialog as soon as it shows.
void pickInFileDialog(const QString &path)
{
    auto *timer = new QTimer;
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, path] {
        for (QWidget *w : QApplication::topLevelWidgets()) {
            auto *d = qobject_cast<tFileDialog *>(w);
            if (!d || !d->isVisible())
                continue;
            auto *view = d->findChild<QListView *>(QStringLiteral("listView"));
            auto *model = qobject_cast<QFileSystemModel *>(view->model());
            const QModelIndex index = model->index(path);
            if (!index.isValid())
                return;
            timer->stop();
            timer->deleteLater();
            view->setCurrentIndex(index);
            d->accept();
            return;
        }
    });
    timer->start();
}

// The pallets as the controller stores them, in list order.
std::vector<orba::MobjPtr> storedPallets()
{
    std::vector<orba::MobjPtr> stored;
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject position;
        position.setValue(nullptr, i);
        stored.push_back(tservice()->execCommand(nullptr, QStringLiteral("tray.query.one"), &position));
    }
    return stored;
}

// Bit for bit: the same tree in the same order, doubles compared by value and sign.
bool samePallets(const std::vector<orba::MobjPtr> &before, const std::vector<orba::MobjPtr> &after)
{
    if (before.size() != after.size())
        return false;
    for (size_t i = 0; i < before.size(); ++i) {
        const orba::ModuleObject *a = before.at(i)->c(QStringLiteral("data"));
        const orba::ModuleObject *b = after.at(i)->c(QStringLiteral("data"));
        if (!a || !b || a->isEmpty() || !a->equals(b))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    // The heap the pendant runs with (TPALLET_HUGE_HEAP=0 for the plain one).
    hugeheap::restartWithHugePages(argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    orba::setConsoleLogEnabled(false);
    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;
    orba::setLogRoot(dir.path());
    tcore::ManagerHelper::instance()->setMsgTestMode(true);
    const QString usb = dir.path() + QStringLiteral("/usb");
    QDir().mkpath(usb + QStringLiteral("/out"));
    qputenv("TPALLET_USB_ROOT", usb.toLocal8Bit());
    qputenv("TPALLET_USB_PRESENT", "1");

    std::unique_ptr<TPallet> module(static_cast<TPallet *>(tpallet::createModule(nullptr)));
    rc::Controller::Options options;
    options.dataDir = dir.path() + QStringLiteral("/rc");
    QDir().mkpath(options.dataDir);
    rc::EmbeddedController controller(options);
    QString error;
    if (!controller.start(&error)) {
        std::fprintf(stderr, "controller: %s\n", qPrintable(error));
        return 1;
    }
    orbat::InProcessTransport transport(controller.endpoint());
    tservice()->setTransport(&transport);
    transport.open();
    QElapsedTimer wait;
    wait.start();
    while (!tservice()->controllerManager()->isConnected() && wait.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);

    for (int i = 0; i < kPallets; ++i)
        tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), makePallet(i));

    orba::ModuleObject treeBefore;
    treeBefore.copyFrom(nullptr, tpallet::palletsNode(), false);
    const std::vector<orba::MobjPtr> storedBefore = storedPallets();

    const QString file = usb + QStringLiteral("/out/tray.xml");
    // Export through the dialog.
    auto *exporter = new ImExportDialog(false, tpallet::palletsNode(), nullptr);
    exporter->findChild<QLineEdit *>(QStringLiteral("edtPath"))->setText(file);
    QElapsedTimer t;
    t.start();
    exporter->work();
    const double exportMs = t.nsecsElapsed() / 1e6;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const qint64 bytes = QFileInfo(file).size();

    // The bound: the same tree written and read bare.
    orba::ModuleObject same(QStringLiteral("temp_list"));
    orba::ModuleManager::readFromXmlFile(nullptr, &same, file);
    const QString bare = usb + QStringLiteral("/out/bare.xml");
    t.restart();
    orba::ModuleManager::writeToXmlFile(bare, &same, true, true);
    const double writeMs = t.nsecsElapsed() / 1e6;
    t.restart();
    {
        orba::ModuleObject back;
        orba::ModuleManager::readFromXmlFile(nullptr, &back, bare);
    }
    const double readMs = t.nsecsElapsed() / 1e6;

    // Empty the list on both sides, then import the file through the dialog.
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject param;
        param.set(nullptr, QStringLiteral("index"), 0, true);
        param.set(nullptr, QStringLiteral("name"), QStringLiteral("bench%1").arg(i), true);
        tservice()->execCommand(nullptr, QStringLiteral("tray.del_one"), &param);
    }
    tpallet::palletsNode()->clear(nullptr);
    auto *importer = new ImExportDialog(true, tpallet::palletsNode(), nullptr);
    importer->show();
    pickInFileDialog(file);
    t.restart();
    importer->openFile();
    const double readFileMs = t.nsecsElapsed() / 1e6;
    importer->work();
    const double importMs = t.nsecsElapsed() / 1e6;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    const orba::MobjPtr list = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    const int onController = list->c(QStringLiteral("data"))->cmobjCount();
    const bool treeSame = treeBefore.equals(tpallet::palletsNode());
    const bool storedSame = samePallets(storedBefore, storedPallets());
    const double bound = writeMs + readMs;
    const double total = exportMs + importMs;
    std::printf("%d pallets of 1200 places, file %.1f MB, embedded controller, heap in huge pages: %s\n\n", kPallets,
                bytes / 1e6, hugeheap::active() ? "yes" : "no");
    std::printf("%-44s %10s %12s %8s\n", "operation", "time [ms]", "bound [ms]", "ratio");
    std::printf("%-44s %10.0f %12.0f %8.2f\n", "export (overlay, write, sync)", exportMs, writeMs, exportMs / writeMs);
    std::printf("%-44s %10.0f %12.0f %8.2f\n", "import: open file (read and check)", readFileMs, readMs, readFileMs / readMs);
    std::printf("%-44s %10.0f %12.0f %8.2f\n", "import (open, check, tray.add_one each)", importMs, readMs, importMs / readMs);
    std::printf("%-44s %10.0f %12.0f %8.2f\n", "export then import", total, bound, total / bound);
    std::printf("\npallets on the controller after the import: %d, under 1 s: %s\n", onController,
                total < 1000.0 ? "yes" : "NO");
    std::printf("bit-exact after the round trip: pallet list %s, controller's store %s\n", treeSame ? "yes" : "NO",
                storedSame ? "yes" : "NO");
    tservice()->setTransport(nullptr);
    return onController == kPallets && treeSame && storedSame ? 0 : 1;
}
