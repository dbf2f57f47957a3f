// The network-level parts of a settings file: the "Network_Information"
// element, written on save and read on load.
#pragma once

#include <libxml/tree.h>
#include <libxml/xmlwriter.h>

#include "KavroEnums.h"
#include "KavroNetwork.h"
#include "links/NetworkConfiguration.h"

namespace KavroLibrary {

// Writes "Network_Information": type, speed, module count and name.
void SaveNetworkInfo(xmlTextWriterPtr writer, NetworkConfiguration* config);

// Reads a "Network_Information" element: the name becomes the network's
// description, the speed is handed back for restoring once the modules are
// in; the type and module count are informative.
void loadnetwork(KavroNetwork* network, xmlNodePtr node, eNetSpeed& speed);

}  // namespace KavroLibrary
