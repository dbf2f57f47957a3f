// Reading the controller configuration files: the per-user file under HOME,
// then the system-wide one.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <vector>

namespace KavroLibrary {

class KavroNetwork;

extern const char* const kUserConfigurationFile;    // appended to HOME
extern const char* const kSystemConfigurationFile;  // absolute

// Reads the per-user file, then the system-wide one.
void readConfigurationFiles(std::vector<KavroNetwork*>& networks);
// Tests cannot write the system-wide file: they name another one in its
// place. An empty path returns to kSystemConfigurationFile.
void setSystemConfigurationFileForTests(const std::string& path);
void readSingleConfigurationFile(std::string path, std::vector<KavroNetwork*>& networks);
void addNetwork(xmlNode* node, std::vector<KavroNetwork*>& networks);

}  // namespace KavroLibrary
