#pragma once

namespace quillet {

// The windows are designed in Arial, MS Sans Serif, MS Serif and Courier.
// Maps them to metric-compatible Liberation faces, so text measures and
// places the same on any system that has them.
void installFontSubstitutions();

} // namespace quillet
