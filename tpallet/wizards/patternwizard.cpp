#include "patternwizard.h"
#include "ui_patternwizard.h"

#include "module/pointgen.h"
#include "module/registration.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QEvent>
#include <QPushButton>
#include <QStyle>

namespace tpallet {

namespace {

const Registration s_step(
    [] { registerWizard(0, [](orba::ModuleObject *pallet, QWidget *parent) { return new PatternWizard(pallet, parent); }); },
    [] { unregisterWizard(0); });

QString picturePath(const QString &prefix, int origin, bool sType, bool rankV)
{
    return QStringLiteral(":/tpallet/images/pallet/%1%2_%3_%4.png")
        .arg(prefix, sType ? QStringLiteral("s") : QStringLiteral("p"), rankV ? QStringLiteral("v") : QStringLiteral("h"))
        .arg(origin);
}

} // namespace

QString patternImagePath(int origin, bool sType, bool rankV)
{
    return picturePath(QString(), origin, sType, rankV);
}

QString axisImagePath(int origin, bool sType, bool rankV)
{
    return picturePath(QStringLiteral("axis_"), origin, sType, rankV);
}

QStringList cornerCaptions(int origin, bool rankV, int row, int col)
{
    constexpr int corners = 4;
    if (origin < 0 || origin >= corners)
        return {};
    auto wrap = [](int n) { return n < 0 ? n + corners : (n >= corners ? n - corners : n); };
    // The neighbour along the first line, the other neighbour, then the opposite corner.
    QList<int> others = origin % 2 == 1 ? QList<int>{origin - 1, origin + 1} : QList<int>{origin + 1, origin - 1};
    others.append(origin + 2);
    for (int &n : others)
        n = wrap(n);
    qint64 c = col;
    qint64 r = row;
    if (rankV) {
        others.swapItemsAt(0, 1);
        std::swap(c, r);
    }
    QStringList captions;
    for (int i = 0; i < corners; ++i)
        captions << QString();
    captions[origin] = QStringLiteral("1");
    captions[others[0]] = QString::number(c);
    captions[others[1]] = QString::number(c * r - c + 1);
    captions[others[2]] = QString::number(c * r);
    return captions;
}

} // namespace tpallet

PatternWizard::PatternWizard(orba::ModuleObject *pallet, QWidget *parent)
    : BaseWizard(pallet, parent)
    , m_ui(new Ui::PatternWizard)
{
    m_ui->setupUi(this);
    orba::ModuleObject *node = m_pallet ? m_pallet.data() : orba::ModuleManager::emptyMobj();

    const bool sType = node->r(QStringLiteral("pattern.s_type"))->getBool(false);
    const bool rankV = node->r(QStringLiteral("pattern.rank_v"))->getBool(false);
    m_ui->btnSType->setChecked(sType);
    m_ui->btnParallel->setChecked(!sType);
    m_ui->btnRankV->setChecked(rankV);
    m_ui->btnRankH->setChecked(!rankV);

    captionRankButtons();
    // The captions only give counts; the arrows say which way the lines run.
    m_ui->btnRankH->setIcon(style()->standardIcon(QStyle::SP_ArrowRight));
    m_ui->btnRankV->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    refreshSpan();

    const QList<QPushButton *> corners = m_ui->wgtPattern->getBtnList();
    void (PatternWizard::*const setters[4])() = {&PatternWizard::setOrigin1, &PatternWizard::setOrigin2,
                                                 &PatternWizard::setOrigin3, &PatternWizard::setOrigin4};
    for (int i = 0; i < corners.size() && i < 4; ++i)
        connect(corners.at(i), &QPushButton::clicked, this, setters[i]);
    for (QPushButton *button : {m_ui->btnParallel, m_ui->btnSType, m_ui->btnRankH, m_ui->btnRankV})
        connect(button, &QPushButton::clicked, this, &PatternWizard::refreshPattern);

    // Rows and columns are edited elsewhere (the pallet's edit dialog); follow them while shown.
    for (const char *path : {"pattern.row", "pattern.col"})
        connect(node->r(QLatin1String(path)), &orba::ModuleObject::changed, this, &PatternWizard::changeTotal);

    setOrigin(node->r(QStringLiteral("pattern.origin"))->getInt(0));
    setButtonNoFocus(this);
    updateAvailability();
}

PatternWizard::~PatternWizard()
{
    delete m_ui;
}

void PatternWizard::captionRankButtons()
{
    orba::ModuleObject *node = m_pallet ? m_pallet.data() : orba::ModuleManager::emptyMobj();
    const int row = node->r(QStringLiteral("pattern.row"))->getInt(0);
    const int col = node->r(QStringLiteral("pattern.col"))->getInt(0);
    m_ui->btnRankV->setText(QStringLiteral("%1\u00d7%2").arg(col).arg(row));
    m_ui->btnRankH->setText(QStringLiteral("%1\u00d7%2").arg(row).arg(col));
    m_ui->lblTotal->setText(QString::number(qint64(row) * col));
}

void PatternWizard::setOrigin(int origin)
{
    refreshButton(origin);
    m_ui->wgtPattern->setImage(tpallet::patternImagePath(origin, m_ui->btnSType->isChecked(), m_ui->btnRankV->isChecked()));
    m_origin = origin;
}

void PatternWizard::refreshButton(int origin)
{
    const QList<QPushButton *> corners = m_ui->wgtPattern->getBtnList();
    if (origin < 0 || origin >= corners.size())
        return;
    orba::ModuleObject *node = m_pallet ? m_pallet.data() : orba::ModuleManager::emptyMobj();
    const QStringList captions =
        tpallet::cornerCaptions(origin, m_ui->btnRankV->isChecked(), node->r(QStringLiteral("pattern.row"))->getInt(0),
                                node->r(QStringLiteral("pattern.col"))->getInt(0));
    for (int i = 0; i < corners.size() && i < captions.size(); ++i) {
        corners.at(i)->setText(captions.at(i));
        // Position 1 stands out, so the operator sees which corner is the origin.
        corners.at(i)->setStyleSheet(i == origin ? QStringLiteral("background: rgb(0, 124, 249); color: #ffffff;")
                                                 : QString());
    }
    m_ui->wgtPattern->resizeBtn();
}

void PatternWizard::refreshSpan()
{
    orba::ModuleObject *node = m_pallet ? m_pallet.data() : orba::ModuleManager::emptyMobj();
    m_ui->wgtPattern->setRowCol(node->r(QStringLiteral("pattern.row"))->getInt(0),
                                node->r(QStringLiteral("pattern.col"))->getInt(0));
}

void PatternWizard::setOrigin1()
{
    setOrigin(0);
}

void PatternWizard::setOrigin2()
{
    setOrigin(1);
}

void PatternWizard::setOrigin3()
{
    setOrigin(2);
}

void PatternWizard::setOrigin4()
{
    setOrigin(3);
}

void PatternWizard::refreshPattern()
{
    setOrigin(m_origin);
}

void PatternWizard::changeTotal()
{
    refreshSpan();
    captionRankButtons();
    refreshButton(m_origin);
}

void PatternWizard::updateAvailability()
{
    const bool enabled = orba::m(QStringLiteral("tcore.r.level"))->getInt(0) >= 3;
    for (QPushButton *button : m_ui->wgtPattern->getBtnList())
        button->setEnabled(enabled);
    m_ui->grbOrder->setEnabled(enabled);
    m_ui->grbRank->setEnabled(enabled);
}

bool PatternWizard::tryNext()
{
    if (!m_pallet)
        return true;
    m_pallet->set(this, QStringLiteral("pattern.origin"), m_origin, true);
    m_pallet->set(this, QStringLiteral("pattern.s_type"), m_ui->btnSType->isChecked(), true);
    m_pallet->set(this, QStringLiteral("pattern.rank_v"), m_ui->btnRankV->isChecked(), true);
    tpallet::genPointsAndSaveToRC(m_pallet);
    return true;
}

void PatternWizard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        captionRankButtons();
    }
    BaseWizard::changeEvent(event);
}
