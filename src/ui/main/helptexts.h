#pragma once

#include "scenariorecord.h"

#include <QString>

namespace quillet {

// The seven text columns of the grid, in order from left to right.
enum class GridColumn { Desc, InitialAmount, Yield, Years, Payment, PerYear, FutureValue };
inline constexpr int GridColumnCount = 7;

// The help box text shown while no cell is being edited.
QString GeneralHelp();
// What the help box says while a cell of the column is edited.
QString FieldHelp(GridColumn column, ListKind list);
// The tool tip of every cell of the column.
QString FieldTip(GridColumn column, ListKind list);
// A help text as the help box shows it: a carriage return breaks the line.
QString helpBoxText(const QString &text);

} // namespace quillet
