#pragma once

#include "common/enumstrings.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QUrl>

// The main categories of the freedesktop menu, each one folder of the
// application tree, and Other for applications that name none of them.
enum class AppCategory {
    AudioVideo,
    Development,
    Education,
    Game,
    Graphics,
    Network,
    Office,
    Science,
    Settings,
    System,
    Utility,
    Other,
};

template<>
struct EnumCases<AppCategory> {
    static constexpr std::array<std::pair<AppCategory, const char *>, 12> cases{{
        {AppCategory::AudioVideo, "AudioVideo"},
        {AppCategory::Development, "Development"},
        {AppCategory::Education, "Education"},
        {AppCategory::Game, "Game"},
        {AppCategory::Graphics, "Graphics"},
        {AppCategory::Network, "Network"},
        {AppCategory::Office, "Office"},
        {AppCategory::Science, "Science"},
        {AppCategory::Settings, "Settings"},
        {AppCategory::System, "System"},
        {AppCategory::Utility, "Utility"},
        {AppCategory::Other, "Other"},
    }};
};

// The first main category of a desktop entry's Categories list, or Other.
AppCategory mainCategory(const QStringList &categories);

// How the desktop presents one category folder: its localized name and icon
// and the .directory file they come from (empty URL for the built-in name).
struct CategoryFolder {
    QString name;
    QUrl url;
    QString icon;
    bool operator==(const CategoryFolder &) const = default;
};

// Names category folders from the desktop's own .directory files, found in
// the desktop-directories folder of each data directory. The current desktop's
// files are preferred; English names (translated where Quillon has a
// translation) stand in when no file is installed.
class CategoryNames
{
public:
    CategoryNames(const QStringList &dataDirs, const QStringList &desktops);

    CategoryFolder folder(AppCategory category) const;

private:
    QStringList m_directoryDirs;
    bool m_preferKde;
};
