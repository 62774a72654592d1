#pragma once

#include <windows.h>

#include <array>
#include <ostream>

namespace Tests
{
struct Language
{
    const char* m_pTag; // names the tests of the language
    WORD m_nId;         // of its resources; below 1024 for all regions of a language
    bool m_bRightToLeft = false;

    friend void PrintTo(const Language& language, std::ostream* stream) { *stream << language.m_pTag; }
};

constexpr WORD g_english = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);

// Every language of the program, English last. Kept apart from what the build makes the resources of.
constexpr std::array g_languages = {
    Language{"ar", 1, true}, Language{"bg", 2},        Language{"zh-Hans", 4},  Language{"cs", 5},
    Language{"da", 6},       Language{"de", 7},        Language{"el", 8},       Language{"es", 10},
    Language{"fi", 11},      Language{"he", 13, true}, Language{"hu", 14},      Language{"it", 16},
    Language{"ko", 18},      Language{"nl", 19},       Language{"nb", 20},      Language{"pl", 21},
    Language{"ro", 24},      Language{"ru", 25},       Language{"sr-Latn", 26}, Language{"sk", 27},
    Language{"sv", 29},      Language{"th", 30},       Language{"tr", 31},      Language{"sl", 36},
    Language{"et", 37},      Language{"lv", 38},       Language{"lt", 39},      Language{"zh-Hant", 1028},
    Language{"fr", 1036},    Language{"ja", 1041},     Language{"pt-BR", 1046}, Language{"hr", 1050},
    Language{"pt-PT", 2070}, Language{"en", g_english}};
static_assert(g_languages.size() == 34);
} // namespace Tests
