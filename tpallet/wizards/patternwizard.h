#pragma once

#include "pages/basewizard.h"

#include <QStringList>

namespace Ui {
class PatternWizard;
}

namespace tpallet {

// ":/tpallet/images/pallet/<s|p>_<v|h>_<origin>.png"
TPALLET_EXPORT QString patternImagePath(int origin, bool sType, bool rankV);
// ":/tpallet/images/pallet/axis_<s|p>_<v|h>_<origin>.png"
TPALLET_EXPORT QString axisImagePath(int origin, bool sType, bool rankV);
// The caption of each corner (0..3) for the origin corner: "1" at the origin, then the last place
// of the first line, the first of the last line and the last place. Serpentine order does not
// change them. Empty when the origin is not a corner.
TPALLET_EXPORT QStringList cornerCaptions(int origin, bool rankV, int row, int col);

} // namespace tpallet

// The pattern step: origin corner, parallel or serpentine order, horizontal or vertical ranking.
class TPALLET_EXPORT PatternWizard : public BaseWizard
{
    Q_OBJECT

public:
    PatternWizard(orba::ModuleObject *pallet, QWidget *parent = nullptr);
    ~PatternWizard() override;

    void setOrigin(int origin);
    void refreshButton(int origin);
    void refreshSpan();
    int origin() const { return m_origin; }

public slots:
    void setOrigin1();
    void setOrigin2();
    void setOrigin3();
    void setOrigin4();
    void refreshPattern();
    void changeTotal();
    void updateAvailability() override;
    bool tryNext() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void captionRankButtons();

    Ui::PatternWizard *m_ui;
    int m_origin = 0;
};
