#pragma once

// The double-byte parameters and their two 7-bit digits are part of the model map.
#include "device/ModelMap.h"
