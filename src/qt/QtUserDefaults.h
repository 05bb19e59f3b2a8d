// The settings in a JSON file of the user's configuration folder.
#pragma once

#include <QFileSystemWatcher>
#include <QSettings>
#include <map>
#include <mutex>

#include "base/Listeners.h"
#include "platform/UserDefaults.h"

namespace tarvix {

// Each change is written at once: the file is locked, read again, and replaced as a whole, so that several programs can
// write and a crash leaves the old file or the new one. What another program writes is seen when the loop next runs.
class QtUserDefaults : public UserDefaults {
public:
    // tarvix/tarvix.json in $XDG_CONFIG_HOME.
    static QString standardPath();

    explicit QtUserDefaults(const QString& path);

    std::optional<Value> get(std::string_view key) const override;
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] Subscription onChange(std::function<void(std::string_view)> changed) override;

private:
    using Values = std::map<std::string, Value, std::less<>>;

    void write();
    void refresh();
    void watch();

    QSettings settings_;
    QFileSystemWatcher watcher_;
    mutable std::mutex mutex_;  // guards values_
    Values values_;             // what the file holds
    Listeners<std::string_view> changed_;
};

}  // namespace tarvix
