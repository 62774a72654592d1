#pragma once

#include "shared/LogFileRotation.h"
#include "tests/logfile/LogFileTest.h"

// A test of what becomes of the older log files.
class RotationTest : public LogFileTest
{
protected:
    // The log file, and older ones 1 to count: each says who it is, the highest number is the oldest.
    void AddFiles(unsigned count)
    {
        m_folder.Add(m_folder.LogPath(), "current");
        for (unsigned i = 1; i <= count; ++i)
            m_folder.Add(m_folder.Older(i), "older " + std::to_string(i), i);
    }

    // A file of another name in the folder, as old as the number says.
    void AddForeign(std::wstring_view name, std::string_view bytes, unsigned age)
    {
        m_folder.Add(m_folder.Path(name), bytes, age);
    }

    // As the log file does once it is closed.
    static void Rotate(const std::wstring& path)
    {
        if (const std::wstring newest = Orvik::Shared::MoveOlderLogFilesUp(path); !newest.empty())
            MoveFileW(path.c_str(), newest.c_str());
    }
    void Rotate() const { Rotate(m_folder.LogPath()); }

    // "ending: bytes" for each file of the folder in the order of names; the ending is what follows "logfile_tests".
    [[nodiscard]] Strings Files() const
    {
        constexpr std::wstring_view stem = L"logfile_tests";
        Strings files;
        for (const std::wstring& name : m_folder.Names())
        {
            const std::wstring ending = name.starts_with(stem) ? name.substr(stem.size()) : name;
            const bool isFolder = (GetFileAttributesW(m_folder.Path(name).c_str()) & FILE_ATTRIBUTE_DIRECTORY) != 0;
            files.push_back(std::string(ending.begin(), ending.end()) + ": " +
                            (isFolder ? "a folder" : BytesIn(m_folder.Path(name))));
        }
        return files;
    }

    // What Files gives behind a rotation of that many in order: the first so many older ones have moved up.
    [[nodiscard]] static Strings Shifted(unsigned count)
    {
        Strings files;
        files.emplace_back("_0001.log: current");
        for (unsigned i = 1; i <= count; ++i)
        {
            const std::string digits = std::to_string(i + 1);
            files.push_back("_" + std::string(4 - digits.size(), '0') + digits + ".log: older " + std::to_string(i));
        }
        return files;
    }
};
