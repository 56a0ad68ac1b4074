#include "hotkeys/accelerators.h"

#include <QHash>
#include <QKeySequence>

#include <array>
#include <utility>

namespace {

constexpr std::array<std::pair<Qt::Key, const char *>, 35> named{{
    {Qt::Key_Space, "space"},
    {Qt::Key_Return, "Return"},
    {Qt::Key_Enter, "KP_Enter"},
    {Qt::Key_Escape, "Escape"},
    {Qt::Key_Tab, "Tab"},
    {Qt::Key_Backspace, "BackSpace"},
    {Qt::Key_Delete, "Delete"},
    {Qt::Key_Insert, "Insert"},
    {Qt::Key_Home, "Home"},
    {Qt::Key_End, "End"},
    {Qt::Key_PageUp, "Page_Up"},
    {Qt::Key_PageDown, "Page_Down"},
    {Qt::Key_Left, "Left"},
    {Qt::Key_Right, "Right"},
    {Qt::Key_Up, "Up"},
    {Qt::Key_Down, "Down"},
    {Qt::Key_Print, "Print"},
    {Qt::Key_Pause, "Pause"},
    {Qt::Key_Menu, "Menu"},
    {Qt::Key_Minus, "minus"},
    {Qt::Key_Plus, "plus"},
    {Qt::Key_Equal, "equal"},
    {Qt::Key_Comma, "comma"},
    {Qt::Key_Period, "period"},
    {Qt::Key_Slash, "slash"},
    {Qt::Key_Backslash, "backslash"},
    {Qt::Key_Semicolon, "semicolon"},
    {Qt::Key_Apostrophe, "apostrophe"},
    {Qt::Key_QuoteLeft, "grave"},
    {Qt::Key_BracketLeft, "bracketleft"},
    {Qt::Key_BracketRight, "bracketright"},
    {Qt::Key_NumberSign, "numbersign"},
    {Qt::Key_Asterisk, "asterisk"},
    {Qt::Key_Exclam, "exclam"},
    {Qt::Key_At, "at"},
}};

} // namespace

QString keysymName(quint32 qtKey)
{
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)
        return QString(QChar(char16_t(qtKey))).toLower();
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F35)
        return QStringLiteral("F%1").arg(qtKey - Qt::Key_F1 + 1);
    for (const auto &[key, name] : named) {
        if (quint32(key) == qtKey)
            return QString::fromLatin1(name);
    }
    return QKeySequence(int(qtKey)).toString(QKeySequence::PortableText);
}

std::optional<quint32> keyFromKeysymName(const QString &name)
{
    if (name.size() == 1 && name.at(0).unicode() < 0x100) {
        const char16_t c = name.at(0).toUpper().unicode();
        if (c > 0x20)
            return c;
    }
    for (const auto &[key, keyName] : named) {
        if (name.compare(QLatin1String(keyName), Qt::CaseInsensitive) == 0)
            return quint32(key);
    }
    if (name.size() > 1 && (name.at(0) == u'F' || name.at(0) == u'f')) {
        bool number = false;
        const int n = name.mid(1).toInt(&number);
        if (number && n >= 1 && n <= 35)
            return quint32(Qt::Key_F1) + quint32(n - 1);
    }
    return std::nullopt;
}

std::optional<HotKeyCombination> fromGtkAccelerator(const QString &accelerator)
{
    static const QHash<QString, quint32> modifierNames{
        {QStringLiteral("control"), HotKeyModifier::Ctrl}, {QStringLiteral("ctrl"), HotKeyModifier::Ctrl},
        {QStringLiteral("primary"), HotKeyModifier::Ctrl}, {QStringLiteral("alt"), HotKeyModifier::Alt},
        {QStringLiteral("mod1"), HotKeyModifier::Alt},     {QStringLiteral("shift"), HotKeyModifier::Shift},
        {QStringLiteral("super"), HotKeyModifier::Super},  {QStringLiteral("mod4"), HotKeyModifier::Super},
    };
    HotKeyCombination result;
    QStringView rest(accelerator);
    rest = rest.trimmed();
    while (rest.startsWith(u'<')) {
        const qsizetype end = rest.indexOf(u'>');
        if (end < 0)
            return std::nullopt;
        // Hyper and Meta have no place in the four modifiers: such an
        // accelerator can never equal one recorded here.
        const auto it = modifierNames.constFind(rest.mid(1, end - 1).toString().toLower());
        if (it == modifierNames.constEnd())
            return std::nullopt;
        result.modifiers |= *it;
        rest = rest.mid(end + 1);
    }
    const auto key = keyFromKeysymName(rest.toString());
    if (!key)
        return std::nullopt;
    result.keyCode = *key;
    return result;
}

QString gtkAccelerator(quint32 keyCode, quint32 modifiers)
{
    QString result;
    if (modifiers & HotKeyModifier::Ctrl)
        result += QStringLiteral("<Control>");
    if (modifiers & HotKeyModifier::Alt)
        result += QStringLiteral("<Alt>");
    if (modifiers & HotKeyModifier::Shift)
        result += QStringLiteral("<Shift>");
    if (modifiers & HotKeyModifier::Super)
        result += QStringLiteral("<Super>");
    return result + keysymName(keyCode);
}

QList<HotKeyCombination> fromKdeKeyList(const QString &keys)
{
    QList<HotKeyCombination> result;
    for (const QString &text : keys.split(u'\t', Qt::SkipEmptyParts)) {
        if (text == QLatin1String("none"))
            continue;
        const QKeySequence sequence = QKeySequence::fromString(text, QKeySequence::PortableText);
        // A shortcut of several strokes holds its first chord for itself.
        if (sequence.isEmpty())
            continue;
        const QKeyCombination chord = sequence[0];
        if (chord.key() == Qt::Key_unknown)
            continue;
        result.append({quint32(chord.key()), hotKeyModifiers(chord.keyboardModifiers()), {}});
    }
    return result;
}
