// HOME pointed at a private folder for the life of a test, with the
// controller configuration files written there: the per-user file under
// HOME and, in place of the system-wide file, one in the same folder.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "TempDir.h"
#include "network/ConfigurationFiles.h"

class ConfigurationHome {
public:
    ConfigurationHome() {
        if (const char* home = std::getenv("HOME")) saved_ = home;
        setenv("HOME", dir.path().c_str(), 1);
        KavroLibrary::setSystemConfigurationFileForTests(systemFile());
    }
    ~ConfigurationHome() {
        if (saved_) {
            setenv("HOME", saved_->c_str(), 1);
        } else {
            unsetenv("HOME");
        }
        KavroLibrary::setSystemConfigurationFileForTests("");
    }
    ConfigurationHome(const ConfigurationHome&) = delete;
    ConfigurationHome& operator=(const ConfigurationHome&) = delete;

    void writeUserFile(const std::string& contents) const {
        dir.write(".PellaquinMetrology/kavrolibrarysettings.xml", contents);
    }
    void writeSystemFile(const std::string& contents) const { dir.write("etc/kavrolibrarysettings.xml", contents); }
    std::string systemFile() const { return (dir.path() / "etc/kavrolibrarysettings.xml").string(); }

    // A settings document listing `networks` (network elements), with a
    // document type declaration when one is given.
    static std::string settings(const std::string& networks, const std::string& doctype = "") {
        return "<?xml version=\"1.0\"?>\n" + doctype + "<settings>\n  <networks>\n" + networks +
               "  </networks>\n</settings>\n";
    }

    TempDir dir;

private:
    std::optional<std::string> saved_;
};
