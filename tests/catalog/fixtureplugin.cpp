// A settings-module stand-in: a Qt plugin whose metadata holds localized
// names the way Plasma 6 modules do. Loading it leaves a mark in the
// environment, so a test can tell that reading its metadata did not.

#include <QObject>
#include <QtGlobal>

namespace {
const bool loaded = qputenv("QUILLON_FIXTURE_PLUGIN_LOADED", "1");
}

class FixturePlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "app.quillon.test.FixturePlugin" FILE "kcm_fixture.json")

public:
    bool wasLoaded() const { return loaded; }
};

#include "fixtureplugin.moc"
