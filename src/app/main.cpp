#include "app/appdelegate.h"
#include "app/appservices.h"
#include "app/layoutprinter.h"
#include "app/queryanswerer.h"
#include "app/quitsignals.h"
#include "app/singleinstance.h"
#include "catalog/localization.h"
#include "catalog/owntranslation.h"
#include "common/log.h"
#include "platform/fileicons.h"
#include "platform/loginitem.h"
#include "platform/ownicons.h"
#include "sources/desktopentries.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QEventLoop>
#include <QIcon>
#include <QStandardPaths>
#include <QTextStream>

#include <cstdlib>
#include <optional>

namespace {

struct Options {
    QCommandLineOption printLayout{QStringLiteral("print-layout"),
                                   QStringLiteral("Print the effective menu layout and exit.")};
    QCommandLineOption printMenu{QStringLiteral("print-menu"),
                                 QStringLiteral("Print the menu as it would open now, and exit.")};
    QCommandLineOption depth{QStringLiteral("depth"),
                             QStringLiteral("How many submenu levels --print-menu fills (default 2)."),
                             QStringLiteral("N"), QStringLiteral("2")};
    QCommandLineOption search{QStringLiteral("search"),
                              QStringLiteral("Print what the menu's search shows for TEXT, and exit."),
                              QStringLiteral("TEXT")};
    QCommandLineOption autostart{QStringLiteral("autostart"), QStringLiteral("Started at login: show only the icon.")};
    QCommandLineOption toggleSearch{QStringLiteral("toggle-search"),
                                    QStringLiteral("Show or hide the running Quillon's search panel.")};
    QCommandLineOption menu{QStringLiteral("menu"), QStringLiteral("Pop the running Quillon's menu up at the mouse.")};
    QCommandLineOption settings{QStringLiteral("settings"), QStringLiteral("Show the running Quillon's settings.")};
};

void describe(QCoreApplication &app, QCommandLineParser &parser, const Options &options)
{
    app.setOrganizationName(QStringLiteral("Quillon"));
    app.setApplicationName(QStringLiteral("Quillon"));
    app.setApplicationVersion(QStringLiteral(QUILLON_VERSION));
    parser.setApplicationDescription(
        QStringLiteral("A launcher in the panel: System Settings, applications, folders and your scripts\n"
                       "from one icon."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({options.printLayout, options.printMenu, options.depth, options.search, options.autostart,
                       options.toggleSearch, options.menu, options.settings});
    // The GUI toolkit's own options (-platform offscreen, -style …) are the
    // full application's; known here, so that the light parsing before it
    // does not take them for mistakes. Single-dash words are how Qt spells them.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const std::pair<const char *, bool> toolkitOptions[] = {
        {"platform", true},        {"platformpluginpath", true},
        {"platformtheme", true},   {"plugin", true},
        {"qwindowgeometry", true}, {"qwindowicon", true},
        {"qwindowtitle", true},    {"reverse", false},
        {"session", true},         {"style", true},
        {"stylesheet", true},      {"widgetcount", false},
        {"display", true},         {"geometry", true},
        {"qmljsdebugger", true},   {"nograb", false},
        {"dograb", false},         {"sync", false},
        {"visual", true},
    };
    for (const auto &[name, takesValue] : toolkitOptions) {
        QCommandLineOption option(QString::fromLatin1(name));
        if (takesValue)
            option.setValueName(QStringLiteral("value"));
        option.setFlags(QCommandLineOption::HiddenFromHelp);
        parser.addOption(option);
    }
}

// How a usage error ends, as with other command-line programs: one line on
// stderr and status 2.
[[noreturn]] void usageError(const QString &message)
{
    QTextStream(stderr) << "quillon: " << message << " Try 'quillon --help'.\n";
    std::exit(2);
}

// What --help adds to the list of options: what a plain start does and
// where Quillon keeps what it remembers.
QString helpEpilog()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return QStringLiteral("\nWithout options Quillon starts and puts its icon in the panel; if one runs\n"
                          "already, its menu opens. --toggle-search, --menu and --settings are for the\n"
                          "desktop's keyboard shortcuts.\n"
                          "\nFiles:\n"
                          "  %1\n      everything Quillon remembers, saved at once after each change\n"
                          "  %2\n      your scripts: every executable file is a shortcut in the menu\n"
                          "  %3\n      there while \"Open at Login\" is on\n"
                          "  %4\n      the applications read last time; safe to delete\n")
        .arg(Preferences().fileName(), data + QStringLiteral("/quillon/shortcuts"), LoginItem::entryPath(),
             applicationCacheFolder());
}

// Help and version on stdout and out; a wrong option or a stray argument is
// a usage error.
void parseOrExit(const QCoreApplication &app, QCommandLineParser &parser)
{
    if (!parser.parse(app.arguments()))
        usageError(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        usageError(QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(QStringLiteral("help-all")))
        parser.process(app); // Qt's own options too; exits
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << parser.helpText() << helpEpilog();
        std::exit(0);
    }
    if (parser.isSet(QStringLiteral("version"))) {
        QTextStream(stdout) << "quillon " << QCoreApplication::applicationVersion() << '\n';
        std::exit(0);
    }
}

bool hasArgument(int argc, char **argv, std::initializer_list<const char *> names)
{
    for (int i = 1; i < argc; ++i) {
        for (const char *name : names) {
            if (QByteArray(argv[i]) == name)
                return true;
        }
    }
    return false;
}

int printLayout(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    Options options;
    describe(app, parser, options);
    parseOrExit(app, parser);
    Preferences preferences;
    MenuStore store(preferences);
    QTextStream(stdout) << layoutText(store);
    return 0;
}

std::optional<InstanceQuery> queryFor(const QCommandLineParser &parser, const Options &options)
{
    if (parser.isSet(options.search))
        return SearchQuery{parser.value(options.search)};
    if (parser.isSet(options.printMenu))
        return MenuQuery{parser.value(options.depth).toInt()};
    return std::nullopt;
}

// The running instance has its applications and shortcuts loaded already,
// so it answers at once; the question goes to it without starting the GUI
// toolkit here. Nothing when no instance answers.
std::optional<QString> askRunning(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    Options options;
    describe(app, parser, options);
    parseOrExit(app, parser);
    const auto query = queryFor(parser, options);
    return query ? SingleInstance::ask(*query) : std::nullopt;
}

// The menu and the search as they are right now, drawn off screen, when no
// instance can tell. The applications folders are read on a thread of their
// own while the catalog loads and the shortcuts tool runs.
int answerHere(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCommandLineParser parser;
    Options options;
    describe(app, parser, options);
    parseOrExit(app, parser);
    const auto query = queryFor(parser, options);
    if (!query)
        return 1;
    ensureIconTheme();
    installOwnTranslation(preferredLanguages());

    // The application index scans on its own thread while the shortcut
    // listing runs.
    AppServices services;
    services.shortcuts.refresh();
    QueryAnswerer answerer(services.statusMenuServices());
    std::optional<QString> text;
    QEventLoop loop;
    answerer.answer(*query, [&text, &loop](const QString &answer) {
        text = answer;
        loop.quit();
    });
    if (!text)
        loop.exec();
    QTextStream(stdout) << *text;
    return 0;
}

int printMenuOrSearch(int argc, char **argv)
{
    if (const auto answer = askRunning(argc, argv)) {
        QTextStream(stdout) << *answer;
        return 0;
    }
    return answerHere(argc, argv);
}

// Commands for the running instance, as bound in the desktop's keyboard settings.
std::optional<InstanceCommand> commandFor(const QCommandLineParser &parser, const Options &options)
{
    const std::pair<const QCommandLineOption *, InstanceCommand> commands[] = {
        {&options.toggleSearch, InstanceCommand::ToggleSearch},
        {&options.menu, InstanceCommand::PopUpMenu},
        {&options.settings, InstanceCommand::ShowSettings},
    };
    for (const auto &[option, command] : commands) {
        if (parser.isSet(*option))
            return command;
    }
    return std::nullopt;
}

int send(InstanceCommand command, const Activation &activation)
{
    if (SingleInstance::send(command, activation))
        return 0;
    QTextStream(stderr) << "Quillon is not running.\n";
    return 1;
}

// A second `quillon` only passes a command on to the running one, so it
// starts no GUI toolkit (no platform plugin, no display connection) for it.
// Nothing when no instance runs: then this process becomes it.
std::optional<int> forwardToRunning(int argc, char **argv, const Activation &activation)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    Options options;
    describe(app, parser, options);
    parseOrExit(app, parser);

    if (const auto command = commandFor(parser, options))
        return send(*command, activation);
    // Started again by hand: the running one opens its menu.
    if (SingleInstance::send(InstanceCommand::Reopen, activation))
        return 0;
    return std::nullopt;
}

int runInstance(int argc, char **argv, const Activation &activation)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    Options options;
    describe(app, parser, options);
    parseOrExit(app, parser);
    app.setQuitOnLastWindowClosed(false);
    addOwnIconFolder();
    app.setWindowIcon(applicationIcon());
    if (const auto command = commandFor(parser, options))
        return send(*command, activation);

    // A signal leaves through the event loop from here on, so that the
    // socket claimed next is removed on the way out.
    const QuitSignals quitSignals;
    SingleInstance instance;
    switch (instance.claim()) {
    case SingleInstance::Claim::Claimed:
        break;
    case SingleInstance::Claim::Elsewhere:
        // Another one started in the meantime.
        SingleInstance::send(InstanceCommand::Reopen, activation);
        return 0;
    case SingleInstance::Claim::Refused:
        return 1;
    }

    ensureIconTheme();
    installOwnTranslation(preferredLanguages());
    if (const auto error = LoginItem(QCoreApplication::applicationFilePath()).renewIfStale())
        qCWarning(lcApp) << "The login entry could not be renewed:" << *error;
    AppDelegate delegate(parser.isSet(options.autostart));
    QueryAnswerer answerer(delegate.services().statusMenuServices());
    instance.setQueryHandler(
        [&answerer](const InstanceQuery &query, QueryReply reply) { answerer.answer(query, std::move(reply)); });
    QObject::connect(&instance, &SingleInstance::commandReceived, &delegate,
                     [&delegate](InstanceCommand command, const Activation &activation) {
                         // The windows the command raises ask for the keyboard
                         // before handle() returns.
                         const ActivationScope scope(activation);
                         delegate.handle(command);
                     });
    delegate.start();
    return app.exec();
}

} // namespace

// Called by the `quillon` executable, which loads this library only when it
// has more to do than pass a command on.
extern "C" Q_DECL_EXPORT int quillonMain(int argc, char **argv)
{
    if (hasArgument(argc, argv, {"--print-layout"}))
        return printLayout(argc, argv);
    if (hasArgument(argc, argv, {"--print-menu", "--search"}))
        return printMenuOrSearch(argc, argv);

    // Started by the session manager at login: our children must not claim
    // its start-up id.
    qunsetenv("DESKTOP_AUTOSTART_ID");
    // Whoever started us may have said that a person asked for it; a running
    // instance needs that to take the keyboard for what it shows. Read before
    // Qt, which takes the X11 start-up id for itself.
    const Activation activation = Activation::fromEnvironment();
    // Qt allows one application object at a time: the light one is gone
    // before the GUI one is made.
    if (const auto exitCode = forwardToRunning(argc, argv, activation))
        return *exitCode;
    return runInstance(argc, argv, activation);
}
