#include "pointgen.h"

#include "modulelog.h"
#include "tpallet.h"
#include "toolset.h"

#include <orba/moduleobject.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <vector>

// Stored places depend on the exact rounding of the grid arithmetic: only the one explicit fma may
// fuse. GCC in ISO mode does not contract; clang does unless told.
#ifdef __clang__
#pragma STDC FP_CONTRACT OFF
#endif

namespace tpallet {

namespace {

struct GridPoint
{
    double x;
    double y;
};

// Truncating remainder on purpose: a negative origin counts as even.
bool isOddOrigin(int origin)
{
    return origin % 2 == 1;
}

orba::ModuleObject *childOrAppend(orba::ModuleObject *parent, const QString &name, QObject *sender)
{
    if (parent->hasCmobj(name, false))
        return parent->c(name, false);
    return parent->append(sender, name);
}

bool withinLimit(int a, int b)
{
    return static_cast<long long>(a) * static_cast<long long>(b) <= kMaxGeneratedPlaces;
}

// The taught pose, placed at (x, y) shifted by the taught horizontal offset from the place pose.
orba::ModuleObject *placedPose(const QString &name, const orba::ModuleObject *taught, double x, double y,
                               QObject *sender)
{
    auto *pose = new orba::ModuleObject(name);
    pose->copyFrom(sender, taught, true, false);
    pose->set(sender, QStringLiteral("trans.#0"), x, true);
    pose->set(sender, QStringLiteral("trans.#1"), y, true);
    return pose;
}

} // namespace

void generateBasePoints(orba::ModuleObject *pallet, QObject *sender)
{
    if (!pallet || pallet->isEmpty())
        return;
    orba::ModuleObject *pattern = pallet->c(QStringLiteral("pattern"));
    const int row = pattern->c(QStringLiteral("row"))->getInt(0);
    const int col = pattern->c(QStringLiteral("col"))->getInt(0);
    const bool odd = isOddOrigin(pattern->c(QStringLiteral("origin"))->getInt(0));
    const int A = odd ? col : row;
    const int B = odd ? row : col;

    // Empty lines still cost a node each, so they count against the limit too.
    const bool fits = A < 1 || withinLimit(A, std::max(B, 1));
    if (!fits)
        logError(QStringLiteral("too many places to generate: %1 x %2").arg(A).arg(B));
    std::vector<GridPoint> grid;
    if (fits && A >= 1 && B >= 1) {
        grid.resize(static_cast<size_t>(A) * static_cast<size_t>(B));

        orba::ModuleObject *cal = pallet->c(QStringLiteral("calibrate"));
        const double xSpan = cal->c(QStringLiteral("x_span"))->getDouble(0.0);
        const double ySpan = cal->c(QStringLiteral("y_span"))->getDouble(0.0);
        const double xOffset13 = cal->c(QStringLiteral("x_offset_13"))->getDouble(0.0);
        const double xOffset24 = cal->c(QStringLiteral("x_offset_24"))->getDouble(0.0);
        const double yOffset34 = cal->c(QStringLiteral("y_offset_34"))->getDouble(0.0);

        for (int i = 0; i < A; ++i) {
            for (int j = 0; j < B; ++j) {
                GridPoint &p = grid[static_cast<size_t>(i) * B + j];
                p.x = A != 1 ? xSpan / (A - 1) * i : 0.0;
                p.y = B != 1 ? ySpan / (B - 1) * j : 0.0;
            }
        }
        // Second pass: the skew of the quadrilateral. Stored grids depend on the rounding of this
        // arithmetic, so its exact form (including the one fused multiply-add) must not change.
        for (int i = 0; i < A; ++i) {
            const double ox = A != 1 ? ((xOffset24 - xOffset13) * i) / (A - 1) + xOffset13 : xOffset13;
            for (int j = 0; j < B; ++j) {
                GridPoint &p = grid[static_cast<size_t>(i) * B + j];
                double t;
                if (B != 1) {
                    p.x = std::fma(ox / (B - 1), static_cast<double>(j), p.x);
                    t = yOffset34 / (B - 1) * j;
                } else {
                    // A single entry per line gets no skew but the whole y offset.
                    p.x = p.x + 0.0;
                    t = yOffset34;
                }
                p.y = (A != 1 ? t / (A - 1) * i : 0.0) + p.y;
            }
        }
    }

    orba::ModuleObject *cal = childOrAppend(pallet, QStringLiteral("calibrate"), sender);
    orba::ModuleObject *points = childOrAppend(cal, QStringLiteral("points"), sender);
    points->clear(sender, true, false);
    if (A < 1 || !fits)
        return;

    for (int i = 0; i < A; ++i) {
        orba::ModuleObject *line = points->append(sender, QStringLiteral("#%1").arg(i));
        for (int j = 0; j < B; ++j) {
            const GridPoint &p = grid[static_cast<size_t>(i) * B + j];
            orba::ModuleObject *entry = line->append(sender, QStringLiteral("#%1").arg(j));
            entry->set(sender, QStringLiteral("#0"), p.x, true);
            entry->set(sender, QStringLiteral("#1"), p.y, true);
        }
    }
}

void generatePoints1(orba::ModuleObject *pallet, QObject *sender)
{
    if (!pallet || pallet->isEmpty())
        return;
    generateBasePoints(pallet, sender);

    orba::ModuleObject *points = childOrAppend(pallet, QStringLiteral("points"), sender);
    points->clear(sender, true, false);

    orba::ModuleObject *pattern = pallet->c(QStringLiteral("pattern"));
    const bool sType = pattern->c(QStringLiteral("s_type"))->getBool(false);
    const bool rankV = pattern->c(QStringLiteral("rank_v"))->getBool(false);
    const bool odd = isOddOrigin(pattern->c(QStringLiteral("origin"))->getInt(0));
    const int row = pattern->c(QStringLiteral("row"))->getInt(0);
    const int col = pattern->c(QStringLiteral("col"))->getInt(0);

    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"));
    orba::ModuleObject *wobj = waypoint->c(QStringLiteral("wobj"));
    orba::ModuleObject *approach = waypoint->c(QStringLiteral("approach"));
    orba::ModuleObject *retract = waypoint->c(QStringLiteral("retract"));

    const double wobjX = wobj->r(QStringLiteral("trans.#0"))->getDouble(0.0);
    const double wobjY = wobj->r(QStringLiteral("trans.#1"))->getDouble(0.0);
    const double dAx = approach->r(QStringLiteral("trans.#0"))->getDouble(0.0) - wobjX;
    const double dAy = approach->r(QStringLiteral("trans.#1"))->getDouble(0.0) - wobjY;
    const double dRx = retract->r(QStringLiteral("trans.#0"))->getDouble(0.0) - wobjX;
    const double dRy = retract->r(QStringLiteral("trans.#1"))->getDouble(0.0) - wobjY;

    const int W = rankV ? row : col;
    const int H = rankV ? col : row;
    if (H < 1 || W < 1 || !withinLimit(H, W))
        return;

    orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    for (int o = 0; o < H; ++o) {
        for (int t = 0; t < W; ++t) {
            const int k = o * W + t;
            const int u = (sType && o % 2 == 1) ? (W - 1) - t : t;
            const int a = rankV ? o : u;
            const int b = rankV ? u : o;
            // Entries were appended in order, so position and "#i" name coincide.
            orba::ModuleObject *entry = grid->c(odd ? a : b)->c(odd ? b : a);
            const double x = entry->c(0)->getDouble(0.0);
            const double y = entry->c(1)->getDouble(0.0);

            auto *place = new orba::ModuleObject(QStringLiteral("#%1").arg(k));
            place->append(sender, placedPose(QStringLiteral("wobj"), wobj, x, y, sender));
            place->append(sender, placedPose(QStringLiteral("approach"), approach, dAx + x, dAy + y, sender));
            place->append(sender, placedPose(QStringLiteral("retract"), retract, dRx + x, dRy + y, sender));
            points->append(sender, place);
        }
    }
}

void initWayPointNode(orba::ModuleObject *pallet)
{
    if (!pallet || pallet->isEmpty())
        return;
    orba::ModuleObject *waypoint = pallet->c(QStringLiteral("waypoint"), true);
    for (const char *name : {"wobj", "approach", "retract"}) {
        const QString key = QLatin1String(name);
        orba::ModuleObject *point = waypoint->c(key);
        if (!point->isNull())
            continue;
        if (point->isEmpty()) {
            auto *created = new orba::ModuleObject(key);
            identityPointNode(created);
            waypoint->append(nullptr, created);
        } else {
            // Present but never filled: complete it in place rather than add a second one.
            identityPointNode(point);
        }
    }
}

void genPointsAndSaveToRC(orba::ModuleObject *pallet)
{
    generatePoints1(pallet, nullptr);
    recordCfgLog(QCoreApplication::translate("tpallet", "The way points have regenerated!"), false);
    saveToRC(pallet);
}

} // namespace tpallet
