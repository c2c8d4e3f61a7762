// Loading 100 pallets of 1200 places at connection, as the Tray page does, for both load protocols
// (one pallet a request, or the whole list in one reply), on the embedded controller and on rcsim
// over TCP. Each configuration runs in a process of its own so that its resident memory is its own.
// The bound is the same replies fetched over the same link without building any tree.
#include "benchpallet.h"
#include "controller.h"
#include "hugeheap.h"
#include "module/pointgen.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"
#include "pages/palletsetdialog.h"

#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tcptransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

namespace {

constexpr int kPallets = 100;
// Opening a pallet this fast shows no wait to an operator.
constexpr int kOpenMs = 300;

orba::ModuleObject *makePallet(orba::ModuleObject *pallets, int n)
{
    return appendFullPallet(pallets, QStringLiteral("bench-pallet-%1").arg(n, 3, 10, QLatin1Char('0')), n, n % 2 == 0, n);
}

qint64 statusKiB(const char *field)
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : f.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

bool waitConnected(int ms)
{
    QElapsedTimer t;
    t.start();
    while (!tservice()->controllerManager()->isConnected() && t.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return tservice()->controllerManager()->isConnected();
}

// A controller on the data directory, embedded or as rcsim, and the link to it.
struct Link
{
    QProcess rcsim;
    std::unique_ptr<rc::EmbeddedController> embedded;
    std::unique_ptr<orbat::Transport> transport;

    bool start(const QString &dataDir, bool tcp, bool legacy)
    {
        if (tcp) {
            QStringList args{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"), QStringLiteral("--data"), dataDir};
            if (legacy)
                args << QStringLiteral("--legacy");
            rcsim.start(QStringLiteral(RCSIM_BIN), args);
            QByteArray out;
            QElapsedTimer t;
            t.start();
            while (rcsim.waitForStarted(100) && !out.contains('\n') && t.elapsed() < 60000) {
                rcsim.waitForReadyRead(50);
                out += rcsim.readAllStandardOutput();
            }
            const QRegularExpressionMatch m =
                QRegularExpression(QStringLiteral("listening on [^:]+:(\\d+)")).match(QString::fromLatin1(out));
            if (!m.hasMatch())
                return false;
            transport = std::make_unique<orbat::TcpTransport>(QStringLiteral("127.0.0.1"), quint16(m.captured(1).toUInt()));
        } else {
            rc::Controller::Options options;
            options.dataDir = dataDir;
            options.legacy = legacy;
            embedded = std::make_unique<rc::EmbeddedController>(options);
            if (!embedded->start())
                return false;
            transport = std::make_unique<orbat::InProcessTransport>(embedded->endpoint());
        }
        return true;
    }

    ~Link()
    {
        if (tservice()->transport() == transport.get())
            tservice()->setTransport(nullptr);
        transport.reset();
        embedded.reset();
        if (rcsim.state() != QProcess::NotRunning) {
            rcsim.terminate();
            rcsim.waitForFinished(10000);
        }
    }
};

int writeList(const QString &dataDir)
{
    orba::ModuleObject pallets(QStringLiteral("pallets"));
    for (int i = 0; i < kPallets; ++i)
        makePallet(&pallets, i);
    Link link;
    if (!link.start(dataDir, false, false))
        return 1;
    tservice()->setTransport(link.transport.get());
    link.transport->open();
    if (!waitConnected(10000))
        return 1;
    tservice()->setTimeout(QStringLiteral("tray.data"), 600000);
    return tservice()->set(nullptr, QStringLiteral("tray.data"), &pallets) == 0 ? 0 : 1;
}

// One configuration: prints "<load ms> <bound ms> <rss KiB> <peak KiB> <pallets>".
int runOne(const QString &dataDir, bool tcp, bool legacy)
{
    std::unique_ptr<TPallet> module(static_cast<TPallet *>(tpallet::createModule(nullptr)));
    module->init();
    module->setup();
    for (const char *name : {"tray.data", "tray.query.one", "tray.query.list"})
        tservice()->setTimeout(QLatin1String(name), 600000);

    // The bound first, on a link of its own: the same replies, no tree.
    double boundMs = 0;
    {
        Link link;
        if (!link.start(dataDir, tcp, legacy))
            return 2;
        link.transport->open();
        QElapsedTimer t;
        t.start();
        while (!link.transport->isConnected() && t.elapsed() < 60000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        qint64 id = 1;
        t.restart();
        if (legacy) {
            link.transport->request(id, "{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}", 600000);
        } else {
            link.transport->request(id, "{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.list\"}", 600000);
            for (int i = 0; i < kPallets; ++i) {
                ++id;
                link.transport->request(id, QStringLiteral("{\"id\":%1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":%2}")
                                                .arg(id).arg(i).toUtf8(), 600000);
            }
        }
        boundMs = t.nsecsElapsed() / 1e6;
    }

    orba::ModuleObject *pallets = tpallet::palletsNode();
    Link link;
    if (!link.start(dataDir, tcp, legacy))
        return 2;
    QElapsedTimer t;
    t.start();
    tservice()->setTransport(link.transport.get());
    link.transport->open();
    while (!(pallets->cmobjCount() == kPallets
             && pallets->c(kPallets - 1)->r(QStringLiteral("points"))->cmobjCount() == 1200)
           && t.elapsed() < 600000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    const double loadMs = t.nsecsElapsed() / 1e6;
    // Opening the last pallet as the page's buttons do: the configuration, then the point check.
    double openMs = 0;
    for (int mode : {0, 4}) {
        t.restart();
        auto *dialog = new PalletSetDialog(pallets->c(kPallets - 1), nullptr, mode);
        dialog->show();
        QCoreApplication::processEvents();
        openMs = qMax(openMs, t.nsecsElapsed() / 1e6);
        delete dialog;
    }
    std::printf("%.1f %.1f %lld %lld %d %.1f\n", loadMs, boundMs, statusKiB("VmRSS:"), statusKiB("VmHWM:"),
                pallets->cmobjCount(), openMs);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    // The heap the pendant runs with (TPALLET_HUGE_HEAP=0 for the plain one); the configurations'
    // processes inherit it.
    hugeheap::restartWithHugePages(argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    orba::setConsoleLogEnabled(false);
    tcore::ManagerHelper::instance()->setMsgTestMode(true);
    const QStringList args = app.arguments();
    if (args.size() == 5 && args.at(1) == QLatin1String("--one"))
        return runOne(args.at(2), args.at(3) == QLatin1String("tcp"), args.at(4) == QLatin1String("whole"));
    if (args.size() == 3 && args.at(1) == QLatin1String("--write")) {
        std::unique_ptr<TPallet> module(static_cast<TPallet *>(tpallet::createModule(nullptr)));
        return writeList(args.at(2));
    }

    QTemporaryDir dir;
    QElapsedTimer t;
    t.start();
    if (QProcess::execute(args.at(0), {QStringLiteral("--write"), dir.path()}) != 0) {
        std::fprintf(stderr, "could not write the pallet list\n");
        return 1;
    }
    std::printf("%d pallets of 1200 places written in %.1f s; heap in huge pages: %s\n\n", kPallets, t.elapsed() / 1e3,
                hugeheap::active() ? "yes" : "no");
    std::printf("%-30s %10s %11s %7s %13s %13s %10s\n", "load at connection", "time [ms]", "bound [ms]", "ratio",
                "resident [MiB]", "peak [MiB]", "open [ms]");
    bool met = true;
    for (const char *link : {"embedded", "tcp"}) {
        for (const char *protocol : {"one", "whole"}) {
            QProcess p;
            p.start(args.at(0), {QStringLiteral("--one"), dir.path(), QLatin1String(link), QLatin1String(protocol)});
            p.waitForFinished(-1);
            const QList<QByteArray> f = p.readAllStandardOutput().trimmed().split('\n').constLast().split(' ');
            if (p.exitCode() != 0 || f.size() != 6) {
                std::printf("%s/%s failed (exit %d)\n", link, protocol, p.exitCode());
                met = false;
                continue;
            }
            const double ms = f.at(0).toDouble(), bound = f.at(1).toDouble();
            const double rss = f.at(2).toDouble() / 1024, peak = f.at(3).toDouble() / 1024;
            const int count = f.at(4).toInt();
            const double openMs = f.at(5).toDouble();
            const QString name = QStringLiteral("%1, %2").arg(QLatin1String(protocol) == QLatin1String("one") ? "per pallet" : "whole list", link);
            std::printf("%-30s %10.0f %11.0f %7.2f %13.0f %13.0f %10.0f%s\n", qPrintable(name), ms, bound, ms / bound, rss,
                        peak, openMs, count == kPallets ? "" : "  LIST INCOMPLETE");
            met = met && ms < 2000 && peak < 600 && count == kPallets && openMs < kOpenMs;
        }
    }
    std::printf("\nopen: the slower of the last pallet's configuration and point check dialogs, shown\n"
                "goal (< 2 s, < 600 MiB peak, every pallet listed, a pallet opens in < %d ms): %s\n", kOpenMs,
                met ? "met" : "NOT met");
    return 0;
}
