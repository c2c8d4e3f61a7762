// Generates the places of a fixed set of pallets with the module's own code and writes every
// generated number, in tree order, as the 8 bytes of its IEEE double (little-endian), so that two
// builds (x86-64 and AArch64) can be compared byte for byte:
//   dump_places FILE            binary dump of the generated places
//   dump_places --text FILE     one line per number: pallet, node path, value as hex float and bits
//   dump_places --frames FILE   instead, the places expressed in the robot's frame through a pallet
//                               frame calibrated from three taught points (the host's frame
//                               arithmetic: Eigen and the C library's trigonometry)
// tools/dev.sh cross runs it on both architectures and compares the files. The places must be
// identical; the frame arithmetic may differ in the last bits, as sin, cos and atan2 of the C
// library and Eigen's vector code round differently on the two CPUs.
#include "pointgen.h"

#include <kx/calc.h>
#include <orba/log.h>
#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QFile>
#include <QStringList>
#include <QVector>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

struct PalletCase
{
    const char *name;
    int row;
    int col;
    int origin;
    bool sType;
    bool rankV;
    double calib[5]; // x_span, y_span, x_offset_13, x_offset_24, y_offset_34
};

// Small and large grids, every origin corner, both orders, both rankings, skewed and irregular
// calibrations; "fma" is the grid whose skew tells one rounding from two.
const PalletCase kCases[] = {
    {"two-by-three", 2, 3, 0, true, false, {1.2, 0.8, 0.05, 0.2, 0.03}},
    {"fma", 2, 5, 0, false, false, {1.2, 0.8, 0.05, 0.2, 0.0}},
    {"single", 1, 1, 2, false, false, {0.6, 0.4, 0.01, 0.02, 0.003}},
    {"seven-by-nine", 7, 9, 3, true, true, {1.0 / 3.0, 2.0 / 7.0, -0.0123456789, 0.0987654321, -0.017}},
    {"thirty-by-forty", 30, 40, 1, true, true, {1.234567, 0.987654321, 0.1, -0.07, 0.011}},
    {"forty-by-thirty", 40, 30, 2, false, false, {0.9999999, 1.0000001, 1e-7, -3e-9, 0.0421}},
};

void setPose(orba::ModuleObject *pose, const double (&trans)[3], const double (&rot)[3])
{
    for (int i = 0; i < 3; ++i)
        pose->set(nullptr, QStringLiteral("trans.#%1").arg(i), trans[i], false);
    for (int i = 0; i < 3; ++i)
        pose->set(nullptr, QStringLiteral("rot.#%1").arg(i), rot[i], false);
    for (int i = 0; i < 6; ++i)
        pose->set(nullptr, QStringLiteral("near.#%1").arg(i), 0.1 * (i + 1) * (i % 2 ? -1 : 1), false);
}

std::unique_ptr<orba::ModuleObject> makePallet(const PalletCase &c)
{
    auto pallet = std::make_unique<orba::ModuleObject>(QStringLiteral("pallet"));
    pallet->set(nullptr, QStringLiteral("name"), QString::fromLatin1(c.name), false);
    pallet->set(nullptr, QStringLiteral("pattern.origin"), c.origin, false);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), c.sType, false);
    pallet->set(nullptr, QStringLiteral("pattern.row"), c.row, false);
    pallet->set(nullptr, QStringLiteral("pattern.col"), c.col, false);
    pallet->set(nullptr, QStringLiteral("pattern.rank_v"), c.rankV, false);
    const char *calib[] = {"x_span", "y_span", "x_offset_13", "x_offset_24", "y_offset_34"};
    for (int i = 0; i < 5; ++i)
        pallet->set(nullptr, QStringLiteral("calibrate.") + QLatin1String(calib[i]), c.calib[i], false);
    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"), true);
    setPose(waypoint->c(QStringLiteral("wobj"), true), {0.3, 0.4, 0.05}, {3.1, 0.0, 1.5});
    setPose(waypoint->c(QStringLiteral("approach"), true), {0.31, 0.37, 0.25}, {3.0, 0.1, 1.4});
    setPose(waypoint->c(QStringLiteral("retract"), true), {0.27, 0.45, 0.3}, {2.9, 0.2, 1.3});
    return pallet;
}

void dumpTree(const QString &pallet, const orba::ModuleObject *node, const QString &path, bool text,
              QByteArray *out)
{
    const QVariant v = node->value();
    if (v.userType() == QMetaType::Double) {
        const double d = v.toDouble();
        std::uint64_t bits = 0;
        std::memcpy(&bits, &d, sizeof bits);
        if (text) {
            char line[64];
            std::snprintf(line, sizeof line, " %a %016llx\n", d, static_cast<unsigned long long>(bits));
            out->append((pallet + QLatin1Char(' ') + path).toUtf8()).append(line);
        } else {
            for (int i = 0; i < 8; ++i)
                out->append(char((bits >> (8 * i)) & 0xff));
        }
    }
    for (int i = 0; i < node->cmobjCount(); ++i) {
        const orba::ModuleObject *child = node->c(i);
        dumpTree(pallet, child, path.isEmpty() ? child->name() : path + QLatin1Char('.') + child->name(), text, out);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    orba::setConsoleLogEnabled(false);
    QStringList args = QCoreApplication::arguments().mid(1);
    const bool text = args.removeAll(QStringLiteral("--text")) > 0;
    const bool frames = args.removeAll(QStringLiteral("--frames")) > 0;
    if (args.size() != 1) {
        std::fprintf(stderr, "usage: dump_places [--text] [--frames] FILE\n");
        return 2;
    }

    QByteArray out;
    long long places = 0;
    for (const PalletCase &c : kCases) {
        std::unique_ptr<orba::ModuleObject> pallet = makePallet(c);
        tpallet::generatePoints1(pallet.get(), nullptr);
        const orba::ModuleObject *points = pallet->r(QStringLiteral("points"));
        if (points->cmobjCount() != c.row * c.col) {
            std::fprintf(stderr, "dump_places: %s generated %d places, not %d\n", c.name, points->cmobjCount(),
                         c.row * c.col);
            return 1;
        }
        places += points->cmobjCount();
        const QString name = QString::fromLatin1(c.name);
        if (!frames) {
            dumpTree(name, pallet->r(QStringLiteral("calibrate.points")), QStringLiteral("calibrate.points"), text,
                     &out);
            dumpTree(name, points, QStringLiteral("points"), text, &out);
            continue;
        }

        // The pallet frame from taught corner points, then every place pose in the robot's frame.
        orba::ModuleObject taught(QStringLiteral("taught"));
        const double corners[3][3] = {{0.41, -0.23, 0.12},
                                      {0.41 + c.calib[0] * 0.8, -0.23 + c.calib[0] * 0.6, 0.125},
                                      {0.41 - c.calib[1] * 0.6, -0.23 + c.calib[1] * 0.8, 0.118}};
        const char *cornerNames[3] = {"origin", "x", "y"};
        for (int k = 0; k < 3; ++k)
            for (int i = 0; i < 3; ++i)
                taught.set(nullptr, QStringLiteral("%1.trans.#%2").arg(QLatin1String(cornerNames[k])).arg(i),
                           corners[k][i], false);
        orba::ModuleObject *frame = taught.c(QStringLiteral("frame"), true);
        if (!kx::calc::calibrateOXY(taught.c(QStringLiteral("origin")), taught.c(QStringLiteral("x")),
                                    taught.c(QStringLiteral("y")), frame)) {
            std::fprintf(stderr, "dump_places: %s: frame not calibrated\n", c.name);
            return 1;
        }
        orba::ModuleObject *world = taught.c(QStringLiteral("world"), true);
        for (int k = 0; k < points->cmobjCount(); ++k) {
            for (const char *pose : {"wobj", "approach", "retract"}) {
                orba::ModuleObject *result =
                    world->c(QStringLiteral("#%1").arg(k), true)->c(QLatin1String(pose), true);
                kx::calc::transformFrame(frame, points->c(k)->c(QLatin1String(pose)), result);
                kx::calc::rot2Quaternion(result->c(QStringLiteral("rot")), result->c(QStringLiteral("quat"), true));
            }
        }
        dumpTree(name, frame, QStringLiteral("frame"), text, &out);
        dumpTree(name, world, QStringLiteral("world"), text, &out);
    }

    QFile file(args.first());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(out) != out.size()) {
        std::fprintf(stderr, "dump_places: cannot write %s\n", qPrintable(args.first()));
        return 1;
    }
    std::printf("%lld places of %d pallets, %lld bytes\n", places, int(sizeof kCases / sizeof kCases[0]),
                static_cast<long long>(out.size()));
    return 0;
}
