#pragma once

#include "common/enumstrings.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QUrl>

#include <optional>

// The hand-made description of the desktop's settings panes: which panes
// exist, what lies inside them and the URLs that open them. Plain values,
// loaded once per process.

enum class Kind { Page, Section, Tab, Sheet };
enum class LabelSource { FullUserName };
enum class SymbolRendering { White, Multicolor, Color };

template<>
struct EnumCases<Kind> {
    static constexpr std::array<std::pair<Kind, const char *>, 4> cases{{
        {Kind::Page, "page"},
        {Kind::Section, "section"},
        {Kind::Tab, "tab"},
        {Kind::Sheet, "sheet"},
    }};
};

template<>
struct EnumCases<LabelSource> {
    static constexpr std::array<std::pair<LabelSource, const char *>, 1> cases{{
        {LabelSource::FullUserName, "fullUserName"},
    }};
};

template<>
struct EnumCases<SymbolRendering> {
    static constexpr std::array<std::pair<SymbolRendering, const char *>, 3> cases{{
        {SymbolRendering::White, "white"},
        {SymbolRendering::Multicolor, "multicolor"},
        {SymbolRendering::Color, "color"},
    }};
};

// A place in one of the desktop's localized string tables.
struct StringRef {
    QString table;
    QString key;
    bool operator==(const StringRef &) const = default;
};

size_t qHash(const StringRef &ref, size_t seed = 0) noexcept;

// How to draw an icon; an unset field means the feature is not given.
struct IconSpec {
    std::optional<QString> bundlePath;
    std::optional<QString> symbol;
    std::optional<QList<QList<double>>> symbolBackground;
    std::optional<SymbolRendering> symbolRendering;
    std::optional<QList<double>> symbolColor;
    std::optional<bool> symbolMirrored;
    std::optional<double> symbolSize;
    std::optional<bool> symbolPrivate;
    std::optional<QString> symbolFallback;
    bool operator==(const IconSpec &) const = default;
};

size_t qHash(const IconSpec &icon, size_t seed = 0) noexcept;

// A place inside a pane: a sub-page, a section, a tab or a sheet.
struct Item {
    QString label;
    std::optional<QList<std::optional<StringRef>>> labelRefs;
    std::optional<LabelSource> labelSource;
    Kind kind = Kind::Page;
    QUrl url;
    IconSpec icon;
    bool operator==(const Item &) const = default;
};

size_t qHash(const Item &item, size_t seed = 0) noexcept;

struct ItemSection {
    std::optional<QString> title;
    std::optional<StringRef> titleRef;
    QList<Item> items;
    bool operator==(const ItemSection &) const = default;
};

size_t qHash(const ItemSection &section, size_t seed = 0) noexcept;

struct Catalog;

struct Pane {
    QString id;
    QString name;
    std::optional<StringRef> nameRef;
    // Empty for a pane that only heads its children and opens nothing.
    QUrl url;
    IconSpec icon;
    QList<ItemSection> sections;
    std::optional<QList<QList<QString>>> children;
    bool operator==(const Pane &) const = default;

    // All items, section after section.
    QList<Item> items() const;
    // The children groups as panes of the catalog; unknown ids and the groups
    // they leave empty are dropped.
    QList<QList<Pane>> childGroups(const Catalog &catalog) const;
    QList<QList<Pane>> childGroups() const;
    QList<Pane> childPanes(const Catalog &catalog) const;
    QList<Pane> childPanes() const;
    // Every URL below the pane, depth first; the pane's own URL is not one.
    QList<QUrl> descendantURLs(const Catalog &catalog) const;
    QList<QUrl> descendantURLs() const;
};

size_t qHash(const Pane &pane, size_t seed = 0) noexcept;

struct Catalog {
    QString osVersion;
    QList<QList<QString>> sections;
    QList<Pane> panes;
    std::optional<QMap<QString, std::optional<StringRef>>> strings;
    bool operator==(const Catalog &) const = default;

    // The catalog of this process, loaded on first use and kept. A missing or
    // broken document ends the process: it is a packaging fault.
    static const Catalog &current();

    // The first pane with this id.
    std::optional<Pane> pane(const QString &id) const;
    // The first pane whose children list this id.
    std::optional<Pane> parent(const QString &id) const;
};

size_t qHash(const Catalog &catalog, size_t seed = 0) noexcept;
