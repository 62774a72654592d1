#pragma once

#include <atomic>

// What a message dialog is about; its number chooses icon and link. Numbers beyond these get the information icon and
// the control of the link as the template has it.
enum class MessageKind : int
{
    Recovered = 0,        // information; the link tells of a repaired image, string 530
    NotRecovered = 1,     // warning; the link tells of a recovery that was not possible, string 531
    RuntimeIntrusion = 2, // warning; the link tells of an intrusion while the system runs, string 508
    PowerOff = 3,         // error, without link
    Notice = 4,           // information, without link
    Warning = 5           // warning; the link tells what g_nLinkKind says when it is clicked
};

// What a dialog is opened with. The caller owns it and its text for as long as the dialog is open.
struct MessageParameters
{
    const wchar_t* m_pText;
    MessageKind m_kind;
};

// What every open link tells: the kind of the dialog of kind 0, 1 or 2 that was opened last, -1 before the first.
// Written and read by the threads of the dialogs, deliberately one for the process.
inline constinit std::atomic<int> g_nLinkKind = -1;
