// SPDX-License-Identifier: MIT
#pragma once

#define API_AVAILABLE(...)
