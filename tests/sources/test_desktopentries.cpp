// Compares the applications this reader shows with the ones GLib shows for
// the same folders. The session's locale is fixed by the environment the test
// runs in (GLib reads it once), so it runs once per session language.
#include "sources/applibrary.h"
#include "sources/desktopentries.h"
#include "sources/desktopentryfile.h"
#include "sources/xdgdirs.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gio/gdesktopappinfo.h>

namespace {

bool writeFile(const QString &path, const QByteArray &contents)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

QByteArray entry(const QByteArray &keys)
{
    return "[Desktop Entry]\nType=Application\nExec=sh\n" + keys;
}

// Twenty translations a line each, the session's among them.
QByteArray manyTranslations(const QByteArray &key, const QByteArray &value)
{
    QByteArray lines;
    for (const char *locale :
         {"af", "ar", "be@latin", "ca@valencia", "cs", "da",    "de_AT", "de_CH",        "el",    "en_GB",
          "es", "fr", "ja",       "nl",          "pl", "pt_BR", "ru",    "sr@ijekavian", "zh_CN", "zh_TW"}) {
        lines += key + '[' + locale + "]=" + value + ' ' + locale + '\n';
    }
    return lines;
}

// file name → contents, below <root>/<folder>/applications.
const QList<std::tuple<const char *, const char *, QByteArray>> fixtures = {
    {"home", "plain.desktop", entry("Name=Plain\n")},
    {"home", "german.desktop", entry("Name=Editor\nName[de]=Bearbeiter\nName[fr]=Éditeur\n")},
    {"home", "many.desktop",
     entry("Name=Many\n" + manyTranslations("Name", "Viele") + "Name[de]=Viele\n"
           + manyTranslations("Comment", "Text"))},
    {"home", "territory.desktop", entry("Name=Territory\nName[de_DE]=Gebiet\nName[de]=Land\n")},
    {"home", "modifier.desktop", entry("Name=Modifier\nName[de@euro]=Euro\n")},
    {"home", "onlygerman.desktop", entry("Name[de]=Nur Deutsch\n")},
    {"home", "nodisplay.desktop", entry("Name=NoDisplay\nNoDisplay=true\n")},
    {"home", "nodisplayfalse.desktop", entry("Name=Shown\nNoDisplay=false\n")},
    {"home", "hidden.desktop", entry("Name=Hidden\nHidden=true\n")},
    {"home", "onlyshowin.desktop", entry("Name=Only GNOME\nOnlyShowIn=GNOME;\n")},
    {"home", "onlyshowinkde.desktop", entry("Name=Only KDE\nOnlyShowIn=KDE;\n")},
    {"home", "notshowin.desktop", entry("Name=Not GNOME\nNotShowIn=GNOME;\n")},
    {"home", "notshowinkde.desktop", entry("Name=Not KDE\nNotShowIn=KDE;X-Cinnamon;\n")},
    {"home", "tryexec.desktop", entry("Name=TryExec found\nTryExec=sh\n")},
    {"home", "tryexecmissing.desktop", entry("Name=TryExec missing\nTryExec=/nonexistent/quillon-test\n")},
    {"home", "execmissing.desktop",
     "[Desktop Entry]\nType=Application\nName=Exec missing\nExec=quillon-no-such-program %U\n"},
    {"home", "execbadquote.desktop", "[Desktop Entry]\nType=Application\nName=Exec bad quote\nExec=\"sh\n"},
    {"home", "execless.desktop", "[Desktop Entry]\nType=Application\nName=No Exec\n"},
    {"home", "link.desktop", "[Desktop Entry]\nType=Link\nName=Link\nURL=https://example.org\n"},
    {"home", "noname.desktop", entry("Comment=No name\n")},
    {"home", "emptyname.desktop", entry("Name=\nName[fr]=Vide\n")},
    {"home", "kde4/foo.desktop", entry("Name=Sub Foo\n")},
    {"home", "escapes.desktop", entry("Name=Tab\\tand\\\\slash\\s\nName[de]=Tab\\tund\\\\Strich\n")},
    {"home", "badescape.desktop", entry("Name=Bad \\q escape\n")},
    {"home", "duplicate.desktop", entry("Name=First\nName=Second\nName[de]=Erste\nName[de]=Zweite\n")},
    {"home", "noheader.desktop", "Type=Application\nName=No header\nExec=sh\n"},
    {"home", "translationfirst.desktop", "Name[fr]=Avant\n[Desktop Entry]\nType=Application\nName=Before\nExec=sh\n"},
    {"home", "othergroupfirst.desktop", "[Other]\nA=b\n[Desktop Entry]\nType=Application\nName=Other first\nExec=sh\n"},
    {"home", "invalidutf8.desktop", entry("Name=Bad \xff\xfe bytes\n")},
    {"home", "invalidutf8fr.desktop", entry("Name=French bad\nName[fr]=Mauvais \xff\n")},
    {"home", "invalidutf8de.desktop", entry("Name=German bad\nName[de]=Schlecht \xff\n")},
    {"home", "spaced.desktop", entry("Name = Spaced\nName[de] = Mit Abstand\nName[fr] = Espacé\n")},
    {"home", "biglines.desktop",
     entry("Name=Big\nComment[fr]=" + QByteArray(1 << 18, 'x') + "\nKeywords=" + QByteArray(1 << 18, 'y') + "\n")},
    {"home", "masked.desktop", entry("Name=Masking copy\n")},
    {"home", "maskhidden.desktop", entry("Name=Mask hidden\nHidden=true\n")},
    {"home", "maskbroken.desktop", "[Desktop Entry]\nType=Application\nName=Mask broken\nExec=\"\n"},
    {"home", ".dot.desktop", entry("Name=Dot file\n")},
    {"home", "folder.desktop/inner.desktop", entry("Name=Inside a folder named like an entry\n")},
    {"home", "encoding.desktop", entry("Name=Legacy\nEncoding=Legacy-Mixed\n")},
    {"home", "encodingutf8.desktop", entry("Name=Encoded\nEncoding=utf-8\n")},
    {"home", "laterbad.desktop", entry("Name=Bad action\n[Desktop Action x]\nnot a key\n")},
    {"home", "badlocale.desktop", entry("Name=Bad locale\nName[de]x=y\n")},
    {"home", "keyspace.desktop", entry("Name=Key space\nName [de]=x\n")},
    {"home", "uppercase.desktop", entry("Name=Upper\nName[DE]=Gross\n")},
    {"home", "emptyonly.desktop", entry("Name=Empty OnlyShowIn\nOnlyShowIn=\n")},
    {"home", "escapedlist.desktop", entry("Name=Escaped list\nOnlyShowIn=X\\;Test;GNOME;\n")},
    {"home", "badlist.desktop", entry("Name=Bad list\nNotShowIn=GNOME\\q;\n")},
    {"home", "invalidlist.desktop", entry("Name=Invalid list\nOnlyShowIn=KDE;\xff;\n")},
    {"home", "crlf.desktop", "[Desktop Entry]\r\nType=Application\r\nExec=sh\r\nName=CRLF\r\nNoDisplay=false\r\n"},
    {"home", "nul.desktop", entry(QByteArray("Name=Nul\0 byte\n", 15))},
    {"home", "trailing.desktop", entry("Name=Trailing  \n")},
    {"home", "trailingbool.desktop", entry("Name=Trailing bool\nNoDisplay=true \t\n")},
    {"home", "execquoted.desktop", "[Desktop Entry]\nType=Application\nName=Quoted\nExec=\"sh\" -c 'echo a#b'\n"},
    {"home", "execabsolute.desktop", "[Desktop Entry]\nType=Application\nName=Absolute\nExec=/bin/sh -c true\n"},
    {"home", "execblank.desktop", "[Desktop Entry]\nType=Application\nName=Blank\nExec=\\s\n"},
    {"home", "trailingbackslash.desktop", entry("Name=Ends with\\\n")},
    {"home", "notype.desktop", "[Desktop Entry]\nName=No type\nExec=sh\n"},
    {"home", "commentgroup.desktop", "# comment\n\n  [Desktop Entry]  \nType=Application\nName=Indented\nExec=sh\n"},
    {"sys", "masked.desktop", entry("Name=Masked copy\n")},
    {"sys", "maskhidden.desktop", entry("Name=Masked by hidden\n")},
    {"sys", "maskbroken.desktop", entry("Name=Masked by broken\n")},
    {"sys", "kde4-foo.desktop", entry("Name=Flat Foo\n")},
    {"sys", "system.desktop", entry("Name=System\nName[de]=System DE\n")},
};

// "id|name" for everything GLib would list in a menu.
QStringList glibVisible()
{
    QStringList result;
    GList *all = g_app_info_get_all();
    for (GList *item = all; item; item = item->next) {
        GAppInfo *info = G_APP_INFO(item->data);
        if (g_app_info_should_show(info)) {
            const char *name = g_app_info_get_name(info);
            result.append(QString::fromUtf8(g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(info))) + '|'
                          + QString::fromUtf8(name ? name : ""));
        }
    }
    g_list_free_full(all, g_object_unref);
    result.sort();
    return result;
}

QStringList quillonVisible()
{
    QStringList result;
    for (const DesktopApp &app : readDesktopApps(AppLibrary::scanRoots(), currentDesktops()))
        result.append(app.url.toLocalFile() + '|' + app.name);
    result.sort();
    return result;
}

// The entries of `list` that `other` lacks, to name them in a failure.
QString missingFrom(const QStringList &other, const QStringList &list)
{
    QStringList missing;
    for (const QString &entry : list) {
        if (!other.contains(entry))
            missing.append(entry);
    }
    return missing.join(QLatin1String("; "));
}

} // namespace

class TestDesktopEntries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        for (const auto &[folder, name, contents] : fixtures) {
            QVERIFY(writeFile(m_root.path() + '/' + folder + "/applications/" + name, contents));
        }
        // Before GLib reads the folders: it keeps them for the process.
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_root.path() + "/home"));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(m_root.path() + "/sys"));
        qputenv("XDG_CURRENT_DESKTOP", "GNOME:X-Test");
    }

    void visibleAppsAreGlibs()
    {
        const QStringList glib = glibVisible();
        QVERIFY(glib.size() > 10);
        const QStringList ours = quillonVisible();
        QCOMPARE(missingFrom(glib, ours), QString());
        QCOMPARE(missingFrom(ours, glib), QString());
        QCOMPARE(ours, glib);
        // Not a comparison of untranslated names only: the German session
        // reads German ones.
        const bool german = qgetenv("LANGUAGE").startsWith("de");
        const QString editor = m_root.path() + "/home/applications/german.desktop|Bearbeiter";
        QCOMPARE(ours.contains(editor), german);
    }

private:
    QTemporaryDir m_root;
};

QTEST_GUILESS_MAIN(TestDesktopEntries)
#include "test_desktopentries.moc"
