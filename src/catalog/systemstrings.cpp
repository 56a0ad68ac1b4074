#include "catalog/systemstrings.h"

#include "catalog/localization.h"
#include "catalog/owntranslation.h"
#include "common/mainthread.h"

#include <pwd.h>
#include <unistd.h>

namespace {

const char *const translationContext = "SystemStrings";

// In the order of the cases.
constexpr std::array englishTexts{
    QT_TRANSLATE_NOOP("SystemStrings", "Quit %@"),
    QT_TRANSLATE_NOOP("SystemStrings", "Settings…"),
    QT_TRANSLATE_NOOP("SystemStrings", "System Settings"),
    QT_TRANSLATE_NOOP("SystemStrings", "Open at Login"),
    QT_TRANSLATE_NOOP("SystemStrings", "General"),
    QT_TRANSLATE_NOOP("SystemStrings", "Menus"),
    QT_TRANSLATE_NOOP("SystemStrings", "Search"),
    QT_TRANSLATE_NOOP("SystemStrings", "Add"),
    QT_TRANSLATE_NOOP("SystemStrings", "Delete"),
    QT_TRANSLATE_NOOP("SystemStrings", "Duplicate"),
    QT_TRANSLATE_NOOP("SystemStrings", "Remove"),
    QT_TRANSLATE_NOOP("SystemStrings", "Untitled"),
    QT_TRANSLATE_NOOP("SystemStrings", "%@ copy"),
    QT_TRANSLATE_NOOP("SystemStrings", "Name"),
    QT_TRANSLATE_NOOP("SystemStrings", "No Selection"),
    QT_TRANSLATE_NOOP("SystemStrings", "No Items"),
    QT_TRANSLATE_NOOP("SystemStrings", "Not Available"),
    QT_TRANSLATE_NOOP("SystemStrings", "Show Search"),
    QT_TRANSLATE_NOOP("SystemStrings", "Check for Updates"),
    QT_TRANSLATE_NOOP("SystemStrings", "Update Available"),
    QT_TRANSLATE_NOOP("SystemStrings", "Automatic Updates"),
    QT_TRANSLATE_NOOP("SystemStrings", "Don’t Show"),
    QT_TRANSLATE_NOOP("SystemStrings", "Menu"),
    QT_TRANSLATE_NOOP("SystemStrings", "Submenu"),
    QT_TRANSLATE_NOOP("SystemStrings", "Add Folder"),
    QT_TRANSLATE_NOOP("SystemStrings", "Sort By"),
    QT_TRANSLATE_NOOP("SystemStrings", "Date Added"),
    QT_TRANSLATE_NOOP("SystemStrings", "Date Modified"),
    QT_TRANSLATE_NOOP("SystemStrings", "Options"),
    QT_TRANSLATE_NOOP("SystemStrings", "Add Shortcut"),
    QT_TRANSLATE_NOOP("SystemStrings", "This item is unavailable."),
    QT_TRANSLATE_NOOP("SystemStrings", "Show"),
    QT_TRANSLATE_NOOP("SystemStrings", "All Applications"),
    QT_TRANSLATE_NOOP("SystemStrings", "Favorites"),
    QT_TRANSLATE_NOOP("SystemStrings", "Keyboard Shortcut"),
    QT_TRANSLATE_NOOP("SystemStrings", "No Shortcut"),
    QT_TRANSLATE_NOOP("SystemStrings", "Press keys"),
    QT_TRANSLATE_NOOP("SystemStrings", "Remove Shortcut"),
    QT_TRANSLATE_NOOP("SystemStrings", "Space"),
    QT_TRANSLATE_NOOP("SystemStrings", "About %@"),
    QT_TRANSLATE_NOOP("SystemStrings", "Send Feedback"),
    QT_TRANSLATE_NOOP("SystemStrings", "Recents"),
    QT_TRANSLATE_NOOP("SystemStrings", "Clear Menu"),
    QT_TRANSLATE_NOOP("SystemStrings", "Number of Items"),
    QT_TRANSLATE_NOOP("SystemStrings", "Separator"),
    QT_TRANSLATE_NOOP("SystemStrings", "Files & Folders"),
    QT_TRANSLATE_NOOP("SystemStrings", "Catalog"),
    QT_TRANSLATE_NOOP("SystemStrings", "%@: %@"),
    QT_TRANSLATE_NOOP("SystemStrings", "Are you sure you want to delete “%@”?"),
    QT_TRANSLATE_NOOP("SystemStrings", "You can’t undo this action."),
    QT_TRANSLATE_NOOP("SystemStrings", "Content"),
    QT_TRANSLATE_NOOP("SystemStrings", "Shortcut used by another action"),
    QT_TRANSLATE_NOOP("SystemStrings", "Other"),
    QT_TRANSLATE_NOOP("SystemStrings", "Icon"),
    QT_TRANSLATE_NOOP("SystemStrings", "None"),
    QT_TRANSLATE_NOOP("SystemStrings", "Blue"),
    QT_TRANSLATE_NOOP("SystemStrings", "Purple"),
    QT_TRANSLATE_NOOP("SystemStrings", "Pink"),
    QT_TRANSLATE_NOOP("SystemStrings", "Red"),
    QT_TRANSLATE_NOOP("SystemStrings", "Orange"),
    QT_TRANSLATE_NOOP("SystemStrings", "Yellow"),
    QT_TRANSLATE_NOOP("SystemStrings", "Green"),
    QT_TRANSLATE_NOOP("SystemStrings", "Graphite"),
};
static_assert(englishTexts.size() == EnumCases<SystemString>::cases.size());

const QString levelSeparator = QStringLiteral(" \u203A ");

// Menu commands of the desktop often end in an ellipsis; the menus here show
// them without one.
QString withoutTrailingEllipsis(QString text)
{
    if (text.endsWith(u'\u2026'))
        text.chop(1);
    if (text.endsWith(u"..."))
        text.chop(3);
    return text;
}

} // namespace

QString englishText(SystemString string)
{
    return QString::fromUtf8(englishTexts.at(size_t(string)));
}

QString fullUserName()
{
    const passwd *account = getpwuid(getuid());
    if (account == nullptr)
        return qEnvironmentVariable("USER");
    // The comment field may hold room and telephone numbers after the name.
    const QString name = QString::fromLocal8Bit(account->pw_gecos).section(u',', 0, 0).trimmed();
    return name.isEmpty() ? QString::fromLocal8Bit(account->pw_name) : name;
}

SystemStrings::SystemStrings(std::optional<StringsMap> strings, const QStringList &languages)
    : m_strings(std::move(strings))
    , m_tables(languages)
    , m_translator(loadOwnTranslation(languages))
{
}

SystemStrings &SystemStrings::shared()
{
    QUILLON_ASSERT_MAIN_THREAD();
    static SystemStrings strings(Catalog::current().strings, preferredLanguages());
    return strings;
}

std::optional<StringTable> SystemStrings::table(const QString &path)
{
    return m_tables.table(path);
}

QString SystemStrings::resolve(const QString &fallback, const std::optional<StringRef> &ref)
{
    if (ref) {
        if (const auto loaded = m_tables.table(ref->table)) {
            const auto it = loaded->constFind(ref->key);
            if (it != loaded->constEnd())
                return withoutTrailingEllipsis(*it);
        }
    }
    return ownTranslation(fallback);
}

QString SystemStrings::ownTranslation(const QString &english) const
{
    if (!m_translator)
        return english;
    const QString translated = m_translator->translate(translationContext, english.toUtf8().constData());
    return translated.isEmpty() ? english : translated;
}

QString SystemStrings::text(SystemString string)
{
    std::optional<StringRef> ref;
    if (m_strings)
        ref = m_strings->value(enumToString(string));
    return resolve(englishText(string), ref);
}

QString SystemStrings::paneName(const Pane &pane)
{
    return resolve(pane.name, pane.nameRef);
}

std::optional<QString> SystemStrings::sectionTitle(const ItemSection &section)
{
    if (!section.title)
        return std::nullopt;
    return resolve(*section.title, section.titleRef);
}

QString SystemStrings::itemLabel(const Item &item)
{
    if (item.labelSource == LabelSource::FullUserName)
        return fullUserName();
    const QStringList components = item.label.split(levelSeparator);
    QStringList resolved;
    for (qsizetype i = 0; i < components.size(); ++i) {
        std::optional<StringRef> ref;
        if (item.labelRefs && i < item.labelRefs->size())
            ref = item.labelRefs->at(i);
        resolved.append(resolve(components.at(i), ref));
    }
    return resolved.join(levelSeparator);
}
