#pragma once

#include <QObject>
#include <QString>

/*
 * The shell's look, applied to the whole application so that every window follows it: the dark
 * frame, one font size, dark dialogs and message boxes (the module's configuration dialog keeps
 * its own rules, which win where both say something), and touch-sized controls: table rows, list
 * and combo-box entries, spin-box arrows and push buttons at least MinTouch pixels high.
 */
namespace shelltheme {

constexpr int MinTouch = 36;
// Rows of tables are made this high unless their owner asked for more.
constexpr int TableRowHeight = 44;

QString styleSheet();
// Sets the style sheet on the application and installs the touch polisher. Idempotent.
void apply();

} // namespace shelltheme

// Gives every table shown in the application rows of at least shelltheme::TableRowHeight pixels:
// row heights are no style sheet matter.
class TouchPolisher : public QObject
{
    Q_OBJECT

public:
    explicit TouchPolisher(QObject *parent = nullptr);
    bool eventFilter(QObject *watched, QEvent *event) override;
};
