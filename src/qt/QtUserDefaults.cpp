#include "qt/QtUserDefaults.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <cstdio>
#include <set>
#include <utility>

namespace tarvix {

namespace {

using namespace std::chrono_literals;

constexpr auto kDoubt = 500ms;  // longer than an editor takes between emptying and writing a file
constexpr auto kLockRetry = 200ms;

QString folderOf(const QString& path) { return QFileInfo(path).absolutePath(); }

QString nearestThatIsThere(QString folder) {
    while (!QFileInfo::exists(folder) && folder != "/") folder = folderOf(folder);
    return folder;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

}  // namespace

QString QtUserDefaults::standardPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/tarvix/tarvix.json";
}

QtUserDefaults::QtUserDefaults(const QString& path) : file_(path.toStdString()) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_, [this] { refresh(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_, [this] { refresh(); });
    for (QTimer* timer : {&doubt_, &lockIsHeld_}) timer->setSingleShot(true);
    QObject::connect(&doubt_, &QTimer::timeout, &doubt_, [this] { believe(); });
    QObject::connect(&lockIsHeld_, &QTimer::timeout, &lockIsHeld_, [this] { refresh(); });
    refresh();
}

QtUserDefaults::~QtUserDefaults() {
    if (!pending_.empty()) believe();
}

std::optional<UserDefaults::Value> QtUserDefaults::get(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
}

void QtUserDefaults::set(std::string_view key, Value value) { change(key, std::move(value)); }

void QtUserDefaults::remove(std::string_view key) { change(key, std::nullopt); }

Subscription QtUserDefaults::onChange(std::function<void(std::string_view)> changed) {
    return changed_.add(std::move(changed));
}

void QtUserDefaults::change(std::string_view key, std::optional<Value> value) {
    {
        const SettingsFile::Lock lock(file_);
        take(file_.read());
        pending_.insert_or_assign(std::string(key), std::move(value));
        writePending(lock);
    }
    publish();
}

void QtUserDefaults::refresh() {
    watch();
    if (pending_.empty()) {
        take(file_.read());
    } else {
        const SettingsFile::Lock lock(file_);
        take(file_.read());
        writePending(lock);
    }
    publish();
}

// The file tells of writing in place, its folder of replacements, and the folder above of another folder in its place;
// for a folder that isn't there, the one above it tells when it comes. Where the file is a link, its target's folder
// counts too. What was replaced is watched under its old name: so all is watched anew.
void QtUserDefaults::watch() {
    const QStringList before = watcher_.files() + watcher_.directories();
    if (!before.isEmpty()) watcher_.removePaths(before);
    const QString path = QString::fromStdString(file_.path());
    const QString target = QString::fromStdString(file_.target());
    QStringList now;
    for (const QString& folder : {folderOf(path), folderOf(folderOf(path)), folderOf(target)})
        now << nearestThatIsThere(folder);
    for (const QString& file : {path, target})
        if (QFileInfo::exists(file)) now << file;
    now.removeDuplicates();
    watcher_.addPaths(now);
}

// What doesn't make sense is in doubt. But for the beginning: no file then means that there never was one, and of a
// damaged one the members that can be read serve until it is mended.
void QtUserDefaults::take(SettingsFile::Reading reading) {
    if (read_ == reading) return;
    const bool isFirst = !read_;
    read_ = std::move(reading);
    doubt_.stop();
    if (read_->kind == SettingsFile::Kind::unusable) {
        belief_ = Belief::untouchable;
        sayOnce("the settings in " + file_.path() + " can't be used (" + read_->text +
                "); changes hold until Tarvix ends");
    } else if (const auto settings = JsonSettings::parse(read_->text)) {
        belief_ = Belief::replaceable;
        store(settings->values());
    } else if (isFirst && read_->kind == SettingsFile::Kind::absent) {
        belief_ = Belief::replaceable;
    } else {
        belief_ = Belief::doubtful;
        if (isFirst) store(JsonSettings::salvage(read_->text).values());
        doubt_.start(kDoubt);
    }
}

// What is read after a change that still waits is the later word.
void QtUserDefaults::store(Values values) {
    const auto at = [](const Values& in, const std::string& key) {
        const auto found = in.find(key);
        return found == in.end() ? std::nullopt : std::optional(found->second);
    };
    std::erase_if(pending_, [&](const auto& each) { return at(stored_, each.first) != at(values, each.first); });
    stored_ = std::move(values);
}

// The doubt has lasted long enough, if it is still the same.
void QtUserDefaults::believe() {
    {
        const SettingsFile::Lock lock(file_);
        doubt_.stop();
        take(file_.read());
        if (!lock) {
            doubt_.start(kDoubt);
        } else if (!doubt_.isActive()) {
            settle();
            writePending(lock);
        }
    }
    publish();
}

void QtUserDefaults::settle() {
    if (belief_ != Belief::doubtful) return;
    belief_ = Belief::replaceable;
    if (isBlank(read_->text)) {
        store({});
    } else {
        mend();
    }
}

// Without a copy of it, the damaged file is not for us to write over.
void QtUserDefaults::mend() {
    const JsonSettings settings = JsonSettings::salvage(read_->text);
    store(settings.values());
    const std::string aside = file_.setAside(read_->text);
    if (aside.empty()) {
        belief_ = Belief::untouchable;
        sayOnce("the settings in " + file_.path() + " are damaged; " + std::to_string(settings.size()) +
                " of them can be read, and changes hold until Tarvix ends");
        return;
    }
    if (write(settings))
        sayOnce("the settings in " + file_.path() + " were damaged and are kept as " + aside + "; " +
                std::to_string(settings.size()) + " of them could be read and stay");
}

void QtUserDefaults::writePending(const SettingsFile::Lock& lock) {
    if (pending_.empty() || belief_ != Belief::replaceable) return;
    if (!lock) {
        lockIsHeld_.start(kLockRetry);
        return;
    }
    const auto read = JsonSettings::parse(read_->text);
    const JsonSettings before = read ? *read : JsonSettings::salvage(read_->text);
    JsonSettings after = before;
    for (const auto& [key, value] : pending_) {
        if (value)
            after.set(key, *value);
        else
            after.remove(key);
    }
    if (after == before || write(after)) pending_.clear();
}

bool QtUserDefaults::write(const JsonSettings& settings) {
    const std::string text = settings.text();
    const std::string reason = file_.replace(text);
    if (!reason.empty()) {
        sayOnce("the settings can't be written to " + file_.path() + " (" + reason +
                "); changes hold until Tarvix ends");
        return false;
    }
    read_ = {SettingsFile::Kind::text, text};
    stored_ = settings.values();
    said_.clear();
    return true;
}

void QtUserDefaults::publish() {
    Values now = stored_;
    for (const auto& [key, value] : pending_) {
        now.erase(key);
        if (value) now.emplace(key, *value);
    }
    std::set<std::string> different;
    {
        const std::lock_guard lock(mutex_);
        const auto compare = [&](const Values& a, const Values& b) {
            for (const auto& [key, value] : a)
                if (const auto other = b.find(key); other == b.end() || other->second != value) different.insert(key);
        };
        compare(values_, now);
        compare(now, values_);
        values_.swap(now);
    }
    for (const std::string& key : different) changed_(key);
}

void QtUserDefaults::sayOnce(const std::string& what) {
    if (said_ == what) return;
    said_ = what;
    std::fprintf(stderr, "tarvix: %s\n", what.c_str());
}

}  // namespace tarvix
