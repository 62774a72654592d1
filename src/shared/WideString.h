#pragma once

#include <string>

// Wide text that is passed around by value.
using CStringW = std::wstring;
