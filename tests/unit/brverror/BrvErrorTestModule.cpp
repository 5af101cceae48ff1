#include "automation/App.h"

namespace App {
const wchar_t* const Title = L"BrvErrorTest";
const short Major = 1;
const short Minor = 2;
const short Revision = 3;
}  // namespace App
