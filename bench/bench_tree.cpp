// Object tree benchmark: a 1200-place pallet built, looked up and serialised, each figure set
// against a flat std::vector doing the same work on the same doubles in the same run.
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

using orba::ModuleManager;
using orba::ModuleObject;

namespace {

constexpr int kPlaces = 1200;
constexpr int kPoses = 3;
constexpr int kDoubles = 12;
constexpr int kLookups = 200000;
const char *const kPoseNames[kPoses] = {"approach", "wobj", "retract"};

double valueOf(int i, int p, int k)
{
    return i * 0.1 + p * 1e-7 + std::sin(i + k) * 3.141592653589793;
}

size_t heapInUse()
{
    const struct mallinfo2 mi = mallinfo2();
    return mi.uordblks + mi.hblkhd;
}

void buildPallet(ModuleObject *root)
{
    ModuleObject *points = root->append(nullptr, "points");
    for (int i = 0; i < kPlaces; ++i) {
        ModuleObject *place = points->append(nullptr, QStringLiteral("#%1").arg(i));
        for (int p = 0; p < kPoses; ++p) {
            ModuleObject *pose = place->append(nullptr, kPoseNames[p]);
            ModuleObject *trans = pose->append(nullptr, "trans");
            ModuleObject *rot = pose->append(nullptr, "rot");
            ModuleObject *near = pose->append(nullptr, "near");
            for (int k = 0; k < 3; ++k)
                trans->append(nullptr, QStringLiteral("#%1").arg(k))->setValue(nullptr, valueOf(i, p, k));
            for (int k = 0; k < 3; ++k)
                rot->append(nullptr, QStringLiteral("#%1").arg(k))->setValue(nullptr, valueOf(i, p, 3 + k));
            for (int k = 0; k < 6; ++k)
                near->append(nullptr, QStringLiteral("#%1").arg(k))->setValue(nullptr, valueOf(i, p, 6 + k));
        }
    }
}

struct Row
{
    const char *name;
    double ms;
    double boundMs;
};

template<typename F>
double timeMs(F &&f, int repeat = 5)
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

volatile double g_sink;

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    std::vector<Row> rows;
    const int doubles = kPlaces * kPoses * kDoubles;

    // Build, with the heap it takes.
    const size_t heapBefore = heapInUse();
    auto *tree = new ModuleObject("pallet");
    buildPallet(tree);
    const size_t heapAfter = heapInUse();
    const int nodes = tree->cmobjs(true).size() + 1;
    delete tree;

    std::vector<double> flat;
    const double buildMs = timeMs([&] {
        ModuleObject t("pallet");
        buildPallet(&t);
    });
    const double buildBound = timeMs([&] {
        std::vector<double> v(doubles);
        for (int i = 0; i < kPlaces; ++i)
            for (int p = 0; p < kPoses; ++p)
                for (int k = 0; k < kDoubles; ++k)
                    v[size_t((i * kPoses + p) * kDoubles + k)] = valueOf(i, p, k);
        flat.swap(v);
    });
    rows.push_back({"build 1200-place pallet", buildMs, buildBound});

    ModuleObject pallet("pallet");
    buildPallet(&pallet);

    // Path lookups with random place, pose and element.
    std::mt19937 rng(42);
    std::vector<QString> paths;
    std::vector<size_t> indices;
    paths.reserve(kLookups);
    indices.reserve(kLookups);
    for (int n = 0; n < kLookups; ++n) {
        const int i = int(rng() % kPlaces);
        const int p = int(rng() % kPoses);
        const int k = int(rng() % 3);
        paths.push_back(QStringLiteral("points.#%1.%2.trans.#%3").arg(i).arg(kPoseNames[p]).arg(k));
        indices.push_back(size_t((i * kPoses + p) * kDoubles + k));
    }
    const double lookupMs = timeMs([&] {
        double sum = 0;
        for (const QString &path : paths)
            sum += pallet.r(path)->getDouble();
        g_sink = sum;
    });
    const double lookupBound = timeMs([&] {
        double sum = 0;
        for (size_t idx : indices)
            sum += flat[idx];
        g_sink = sum;
    });
    rows.push_back({"resolve 200000 paths", lookupMs, lookupBound});

    // Serialisation lower bound: every double to text and back.
    std::string text;
    const double writeBound = timeMs([&] {
        text.clear();
        char buf[32];
        for (double d : flat) {
            const int len = std::snprintf(buf, sizeof buf, "%.17g", d);
            text.append(buf, size_t(len));
            text.push_back(' ');
        }
    });
    const double readBound = timeMs([&] {
        const char *p = text.c_str();
        double sum = 0;
        for (size_t n = 0; n < flat.size(); ++n) {
            char *end = nullptr;
            sum += std::strtod(p, &end);
            p = end;
        }
        g_sink = sum;
    });

    QByteArray xml;
    const double xmlWrite = timeMs([&] { xml = ModuleManager::toXml(&pallet, false); });
    const double xmlRead = timeMs([&] {
        ModuleObject back;
        if (!ModuleManager::fromXml(nullptr, &back, xml))
            std::abort();
    });
    QByteArray json;
    const double jsonWrite = timeMs([&] { json = pallet.exportToJson(true); });
    const double jsonRead = timeMs([&] {
        ModuleObject back;
        if (!back.importFromJson(nullptr, json))
            std::abort();
    });
    rows.push_back({"write XML", xmlWrite, writeBound});
    rows.push_back({"read XML", xmlRead, readBound});
    rows.push_back({"write JSON", jsonWrite, writeBound});
    rows.push_back({"read JSON", jsonRead, readBound});

    // A pallet as it arrives from the controller: read from its JSON text. Nothing holds its places
    // yet, so they need not be objects.
    malloc_trim(0);
    const qint64 objectsBefore = ModuleObject::liveObjects();
    const size_t loadHeapBefore = heapInUse();
    auto *loaded = new ModuleObject("pallet");
    if (!loaded->importFromJson(nullptr, json))
        std::abort();
    const size_t loadHeap = heapInUse() - loadHeapBefore;
    const qint64 loadObjects = ModuleObject::liveObjects() - objectsBefore;
    const bool loadedSame = loaded->equals(&pallet);
    // One place read through a path, as a page showing it does.
    g_sink = loaded->r(QStringLiteral("points.#600.wobj.trans.#0"))->getDouble();
    const qint64 oneReadObjects = ModuleObject::liveObjects() - objectsBefore;
    const size_t oneReadHeap = heapInUse() - loadHeapBefore;
    delete loaded;

    // The connection load: 100 full pallets in one reply, read and copied into the pallet list.
    constexpr int kPallets = 100;
    QByteArray reply("{\"data\":[");
    reply.reserve(json.size() * kPallets + 64);
    for (int i = 0; i < kPallets; ++i) {
        if (i)
            reply.append(',');
        reply.append(json);
    }
    reply.append("]}");
    const double load100Bound = readBound * kPallets;
    size_t load100Heap = 0;
    qint64 load100Objects = 0;
    bool load100Same = true;
    double load100Ms = 1e300;
    for (int repeat = 0; repeat < 3; ++repeat) {
        malloc_trim(0);
        const qint64 before = ModuleObject::liveObjects();
        const size_t heapBefore100 = heapInUse();
        QElapsedTimer t;
        t.start();
        ModuleObject replyNode;
        if (!replyNode.importFromJson(nullptr, reply))
            std::abort();
        ModuleObject pallets("pallets");
        pallets.copyFrom(nullptr, replyNode.c(QStringLiteral("data")));
        replyNode.clear(nullptr);
        // Tearing the list down again is not part of the load.
        load100Ms = std::min(load100Ms, t.nsecsElapsed() / 1e6);
        load100Heap = heapInUse() - heapBefore100;
        load100Objects = ModuleObject::liveObjects() - before;
        load100Same = pallets.cmobjCount() == kPallets && pallets.c(kPallets - 1)->equals(&pallet);
    }
    rows.push_back({"load 100 pallets (JSON)", load100Ms, load100Bound});

    std::printf("%-26s %12s %14s %8s\n", "operation", "time [ms]", "bound [ms]", "ratio");
    for (const Row &r : rows)
        std::printf("%-26s %12.3f %14.3f %8.1f\n", r.name, r.ms, r.boundMs, r.ms / r.boundMs);
    std::printf("\nnodes: %d, heap: %.1f KiB, per node: %.0f bytes (flat doubles: %.1f KiB, 8 bytes each)\n",
                nodes, (heapAfter - heapBefore) / 1024.0, double(heapAfter - heapBefore) / nodes,
                doubles * 8 / 1024.0);
    std::printf("XML: %d bytes, JSON: %d bytes\n", int(xml.size()), int(json.size()));
    std::printf("\npallet read from JSON: heap %.1f KiB (%.2f MiB, bound 4 MiB: %s), %lld node objects for %d nodes,"
                " same tree: %s\n",
                loadHeap / 1024.0, loadHeap / 1048576.0, loadHeap < 4u * 1048576u ? "yes" : "NO",
                static_cast<long long>(loadObjects), nodes, loadedSame ? "yes" : "NO");
    std::printf("  after reading one place through a path: heap %.1f KiB, %lld node objects\n", oneReadHeap / 1024.0,
                static_cast<long long>(oneReadObjects));
    std::printf("100 pallets read and copied into the list: heap %.1f MiB (%.2f MiB per pallet), %lld node objects,"
                " same tree: %s\n",
                load100Heap / 1048576.0, load100Heap / 1048576.0 / kPallets, static_cast<long long>(load100Objects),
                load100Same ? "yes" : "NO");
    return loadedSame && load100Same ? 0 : 1;
}
