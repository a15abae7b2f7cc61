#include "explained.h"
