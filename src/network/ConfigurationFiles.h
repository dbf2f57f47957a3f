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

void readConfigurationFiles(std::vector<KavroNetwork*>& networks);
void readSingleConfigurationFile(std::string path, std::vector<KavroNetwork*>& networks);
void addNetwork(xmlNode* node, std::vector<KavroNetwork*>& networks);

}  // namespace KavroLibrary
