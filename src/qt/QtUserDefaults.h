// The settings in a JSON file of the user's configuration folder.
#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "base/Listeners.h"
#include "platform/UserDefaults.h"
#include "qt/JsonSettings.h"
#include "qt/SettingsFile.h"

namespace tarvix {

// Each change is written at once. What another program writes is seen when the loop next runs.
//
// An editor may be at the file: where it has become empty, has gone, or can't be read as JSON, it is believed half a
// second later, if it is still so. Until then the values that were read before hold, and changes wait. A damaged file
// is then kept under another name and written anew with the members that can be read; one line on the error output says
// so. Where the file can't be written, one line says so too, and changes hold as long as this object.
class QtUserDefaults : public UserDefaults {
public:
    // tarvix/tarvix.json in $XDG_CONFIG_HOME.
    static QString standardPath();

    explicit QtUserDefaults(const QString& path);
    // Changes that still wait are written.
    ~QtUserDefaults() override;

    std::optional<Value> get(std::string_view key) const override;
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] Subscription onChange(std::function<void(std::string_view)> changed) override;

private:
    using Values = JsonSettings::Values;
    // Whether what has been read may make room for what is written.
    enum class Belief { doubtful, replaceable, untouchable };

    void change(std::string_view key, std::optional<Value> value);
    void refresh();
    void watch();
    void take(SettingsFile::Reading reading);
    void store(Values values);
    void believe();
    void settle();
    void mend();
    void writePending(const SettingsFile::Lock& lock);
    bool write(const JsonSettings& settings);
    void publish();
    void sayOnce(const std::string& what);

    SettingsFile file_;
    QFileSystemWatcher watcher_;
    QTimer doubt_;       // runs while the file is in doubt
    QTimer lockIsHeld_;  // runs while another program has the lock
    std::optional<SettingsFile::Reading> read_;
    Belief belief_ = Belief::doubtful;
    Values stored_;                                                     // by the last reading that made sense
    std::map<std::string, std::optional<Value>, std::less<>> pending_;  // changes that aren't in the file yet
    std::string said_;                                                  // the last complaint, until a write succeeds
    mutable std::mutex mutex_;                                          // guards values_
    Values values_;                                                     // the stored ones with the pending changes
    Listeners<std::string_view> changed_;
};

}  // namespace tarvix
