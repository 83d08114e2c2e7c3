#include <gtest/gtest.h>

#include "Framework.h"
