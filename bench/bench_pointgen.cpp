// Regenerating and saving a 1200-place pallet: generatePoints1 and saveToRC through the embedded
// controller, set against the same poses computed into a flat array in the same run; and the heap
// the generated pallet occupies in the tree against the flat array's size.
#include "controller.h"
#include "module/pointgen.h"
#include "module/toolset.h"
#include "module/tpallet.h"

#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tservice.h>
#include <kx/kx.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kRows = 40;
constexpr int kCols = 30;
constexpr int kPoses = 3;
constexpr int kDoubles = 12; // trans 3, rot 3, near 6

size_t heapInUse()
{
    const struct mallinfo2 mi = mallinfo2();
    return mi.uordblks + mi.hblkhd;
}

template<typename F>
double bestMs(F &&f, int repeat)
{
    double best = 1e300;
    for (int r = 0; r < repeat; ++r) {
        QElapsedTimer t;
        t.start();
        f();
        best = std::min(best, t.nsecsElapsed() / 1e6);
    }
    return best;
}

void setPose(orba::ModuleObject *pose, double x, double y, double z)
{
    pose->set(nullptr, QStringLiteral("trans.#0"), x, true);
    pose->set(nullptr, QStringLiteral("trans.#1"), y, true);
    pose->set(nullptr, QStringLiteral("trans.#2"), z, true);
    for (int i = 0; i < 3; ++i)
        pose->set(nullptr, QStringLiteral("rot.#%1").arg(i), 0.1 * (i + 1), true);
    for (int i = 0; i < 6; ++i)
        pose->set(nullptr, QStringLiteral("near.#%1").arg(i), -0.2 * (i + 1), true);
}

// A calibrated 40 x 30 pallet with taught way points, places not yet generated.
orba::ModuleObject *makePallet(orba::ModuleObject *parent, const QString &name)
{
    orba::ModuleObject *pallet = parent->append(nullptr, QStringLiteral("#%1").arg(parent->cmobjCount()));
    pallet->set(nullptr, QStringLiteral("name"), name, true);
    pallet->set(nullptr, QStringLiteral("desc"), QStringLiteral("benchmark"), true);
    pallet->set(nullptr, QStringLiteral("pattern.origin"), 0, true);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), true, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), kRows, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), kCols, true);
    pallet->set(nullptr, QStringLiteral("pattern.exchange"), false, true);
    pallet->set(nullptr, QStringLiteral("pattern.rank_v"), false, true);
    tpallet::identityToolsetNode(pallet->append(nullptr, QStringLiteral("calibrate"))->append(nullptr, QStringLiteral("toolset")));
    pallet->set(nullptr, QStringLiteral("calibrate.use_p4"), true, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 1.2, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.8, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_13"), 0.013, true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_offset_24"), 0.017, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_offset_34"), 0.011, true);
    tpallet::initWayPointNode(pallet);
    setPose(pallet->r(QStringLiteral("waypoint.wobj")), 0.3, 0.4, 0.05);
    setPose(pallet->r(QStringLiteral("waypoint.approach")), 0.31, 0.37, 0.25);
    setPose(pallet->r(QStringLiteral("waypoint.retract")), 0.27, 0.45, 0.3);
    return pallet;
}

// The lower bound: the same grid and the same 1200 x 3 poses, written into one flat array.
struct Flat
{
    std::vector<double> grid;
    std::vector<double> poses;
};

void flatGenerate(Flat &flat, const double taught[kPoses][kDoubles])
{
    const int A = kRows;
    const int B = kCols;
    const double xSpan = 1.2, ySpan = 0.8, x13 = 0.013, x24 = 0.017, y34 = 0.011;
    flat.grid.assign(size_t(A) * B * 2, 0.0);
    for (int i = 0; i < A; ++i) {
        for (int j = 0; j < B; ++j) {
            double *p = &flat.grid[(size_t(i) * B + j) * 2];
            p[0] = xSpan / (A - 1) * i;
            p[1] = ySpan / (B - 1) * j;
        }
    }
    for (int i = 0; i < A; ++i) {
        const double ox = ((x24 - x13) * i) / (A - 1) + x13;
        for (int j = 0; j < B; ++j) {
            double *p = &flat.grid[(size_t(i) * B + j) * 2];
            p[0] = std::fma(ox / (B - 1), double(j), p[0]);
            p[1] = y34 / (B - 1) * j / (A - 1) * i + p[1];
        }
    }
    flat.poses.resize(size_t(A) * B * kPoses * kDoubles);
    const double dx[kPoses] = {0.0, taught[1][0] - taught[0][0], taught[2][0] - taught[0][0]};
    const double dy[kPoses] = {0.0, taught[1][1] - taught[0][1], taught[2][1] - taught[0][1]};
    for (int o = 0; o < A; ++o) {
        for (int t = 0; t < B; ++t) {
            const int u = (o % 2 == 1) ? B - 1 - t : t;
            const double *g = &flat.grid[(size_t(o) * B + u) * 2];
            double *out = &flat.poses[(size_t(o) * B + t) * kPoses * kDoubles];
            for (int p = 0; p < kPoses; ++p) {
                std::copy(taught[p], taught[p] + kDoubles, out + p * kDoubles);
                out[p * kDoubles + 0] = dx[p] + g[0];
                out[p * kDoubles + 1] = dy[p] + g[1];
            }
        }
    }
}

int countNodes(const orba::ModuleObject *node)
{
    int n = 1;
    for (const orba::ModuleObject *child : node->cmobjs(false))
        n += countNodes(child);
    return n;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    orba::setConsoleLogEnabled(false);
    QTemporaryDir dir;
    if (!dir.isValid()) {
        std::fprintf(stderr, "no temporary directory\n");
        return 1;
    }
    orba::setLogRoot(dir.path());

    // Heap held by the generated places and grid of one pallet, measured first, on a quiet heap.
    orba::ModuleObject *pallets = kx::globalNode(QStringLiteral("tpallet.pallets"));
    size_t treeBytes = 0;
    int nodes = 0;
    qint64 objects = 0;
    {
        orba::ModuleObject *fresh = makePallet(pallets, QStringLiteral("memory"));
        malloc_trim(0);
        const size_t before = heapInUse();
        const qint64 objectsBefore = orba::ModuleObject::liveObjects();
        tpallet::generatePoints1(fresh, nullptr);
        treeBytes = heapInUse() - before;
        objects = orba::ModuleObject::liveObjects() - objectsBefore;
        nodes = countNodes(fresh->c(QStringLiteral("points"))) + countNodes(fresh->r(QStringLiteral("calibrate.points")));
        pallets->remove(nullptr, fresh);
    }

    rc::Controller::Options options;
    options.dataDir = dir.path();
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
    if (!tservice()->controllerManager()->isConnected()) {
        std::fprintf(stderr, "controller did not connect\n");
        return 1;
    }

    orba::ModuleObject *pallet = makePallet(pallets, QStringLiteral("bench"));
    tpallet::generatePoints1(pallet, nullptr);
    const orba::MobjPtr added = tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), pallet);
    if (added->getInt(-1) != 0) {
        std::fprintf(stderr, "tray.add_one failed: %d\n", added->getInt(-1));
        return 1;
    }

    double taught[kPoses][kDoubles];
    const char *names[kPoses] = {"wobj", "approach", "retract"};
    for (int p = 0; p < kPoses; ++p) {
        const orba::ModuleObject *pose = pallet->r(QStringLiteral("waypoint.%1").arg(QLatin1String(names[p])));
        for (int k = 0; k < 3; ++k) {
            taught[p][k] = pose->r(QStringLiteral("trans.#%1").arg(k))->getDouble();
            taught[p][3 + k] = pose->r(QStringLiteral("rot.#%1").arg(k))->getDouble();
        }
        for (int k = 0; k < 6; ++k)
            taught[p][6 + k] = pose->r(QStringLiteral("near.#%1").arg(k))->getDouble();
    }

    constexpr int kRepeat = 21;
    Flat flat;
    volatile double sink = 0.0;
    const double flatMs = bestMs([&] { flatGenerate(flat, taught); sink = sink + flat.poses[1234]; }, 200);
    const double genMs = bestMs([&] { tpallet::generatePoints1(pallet, nullptr); }, kRepeat);
    const double saveMs = bestMs([&] { tpallet::saveToRC(pallet); }, kRepeat);
    const int saveStatus = tservice()->lastStatus();
    // Runs alternate between a moved and the taught place point, so that each save changes all
    // the places' bytes as a real one does (the store skips pages whose bytes did not change).
    const QString movedCoordinate = QStringLiteral("waypoint.wobj.trans.#0");
    int run = 0;
    const double wholeMs = bestMs(
        [&] {
            pallet->set(nullptr, movedCoordinate, taught[0][0] + (++run % 2 ? 0.5 : 0.0));
            tpallet::genPointsAndSaveToRC(pallet);
        },
        kRepeat);
    // Back on the taught point for the check below.
    pallet->set(nullptr, movedCoordinate, taught[0][0]);
    tpallet::genPointsAndSaveToRC(pallet);
    const double baseMs = bestMs([&] { tpallet::generateBasePoints(pallet, nullptr); }, kRepeat);
    const double jsonMs = bestMs([&] { sink = sink + orba::json::write(pallet).size(); }, kRepeat);
    QByteArray json = orba::json::write(pallet);
    const double parseMs = bestMs([&] { orba::ModuleObject n; orba::json::read(nullptr, &n, json); }, kRepeat);
    orba::ModuleObject *small = makePallet(pallets, QStringLiteral("small"));
    small->set(nullptr, QStringLiteral("pattern.row"), 1, true);
    small->set(nullptr, QStringLiteral("pattern.col"), 1, true);
    tpallet::generatePoints1(small, nullptr);
    tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), small);
    const double smallSaveMs = bestMs([&] { tpallet::saveToRC(small); }, kRepeat);

    // Check the benchmark computes what the module computes.
    const orba::ModuleObject *last = pallet->r(QStringLiteral("points.#1199"));
    const double *flatLast = &flat.poses[size_t(1199) * kPoses * kDoubles];
    const bool same = last->r(QStringLiteral("wobj.trans.#0"))->getDouble() == flatLast[0]
                      && last->r(QStringLiteral("retract.trans.#1"))->getDouble() == flatLast[2 * kDoubles + 1]
                      && last->r(QStringLiteral("approach.near.#5"))->getDouble() == flatLast[kDoubles + 11];

    const double treeKiB = treeBytes / 1024.0;
    const double flatKiB = double((flat.grid.size() + flat.poses.size()) * sizeof(double)) / 1024.0;

    std::printf("1200-place pallet (40 x 30, serpentine), embedded controller, best of %d\n\n", kRepeat);
    std::printf("%-40s %10s %12s %8s\n", "operation", "time [ms]", "bound [ms]", "ratio");
    std::printf("%-40s %10.3f %12.4f %8.0f\n", "generatePoints1", genMs, flatMs, genMs / flatMs);
    std::printf("%-40s %10.3f %12.4f %8.0f\n", "  of which generateBasePoints", baseMs, flatMs, baseMs / flatMs);
    std::printf("%-40s %10.3f %12s %8s\n", "saveToRC (tray.set.one)", saveMs, "-", "-");
    std::printf("%-40s %10.3f %12s %8s\n", "  JSON write of the pallet (GUI side)", jsonMs, "-", "-");
    std::printf("%-40s %10.3f %12s %8s\n", "  JSON read of the pallet (RC side)", parseMs, "-", "-");
    std::printf("%-40s %10.3f %12s %8s\n", "  saveToRC of a 1-place pallet", smallSaveMs, "-", "-");
    std::printf("%-40s %10.3f %12.4f %8.0f\n", "genPointsAndSaveToRC (whole)", wholeMs, flatMs, wholeMs / flatMs);
    std::printf("\nmemory: tree %.1f KiB for %d nodes (%.0f bytes/node), flat %.1f KiB, ratio %.1f\n", treeKiB,
                nodes, double(treeBytes) / nodes, flatKiB, treeKiB / flatKiB);
    std::printf("node objects created by generatePoints1: %lld of %d nodes (the rest kept compact)\n",
                static_cast<long long>(objects), nodes);
    std::printf("save status %d, results match the flat array: %s, whole regenerate-and-save < 20 ms: %s\n",
                saveStatus, same ? "yes" : "NO", wholeMs < 20.0 ? "yes" : "NO");

    tservice()->setTransport(nullptr);
    return same && saveStatus == 0 ? 0 : 1;
}
