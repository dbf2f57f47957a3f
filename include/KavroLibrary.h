// The umbrella header: everything an application needs from the library.
#pragma once

#include "KavroEnums.h"
#include "KavroErrors.h"
#include "KavroException.h"
#include "KavroNumberText.h"
