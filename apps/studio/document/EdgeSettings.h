#pragma once

#include "cutout/EdgeSettings.h"
