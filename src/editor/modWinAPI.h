#pragma once

class Form;

namespace modWinAPI {
// Makes a window topmost without moving or resizing it. Whether it succeeds is ignored.
void SetWindowTopMost(Form& Form);
}  // namespace modWinAPI
