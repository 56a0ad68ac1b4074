#pragma once

// What the settings window needs of update checking, which lives above it.
class UpdateSettings
{
public:
    virtual ~UpdateSettings() = default;

    // False in builds without an update feed.
    virtual bool isConfigured() const = 0;
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool enabled) = 0;
    // The user asked: check now and show the outcome.
    virtual void checkForUpdates() = 0;
};
