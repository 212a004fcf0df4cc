// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_symbols.h"

namespace nimbo {
namespace {

TemplateShape box(Rect rect, double radius = 0) { return {{rect, radius}, 1, {}, {}}; }

}  // namespace

TemplateImage barsSymbol() {
  return {{box({1, 2, 16, 1}), box({2, 4, 4, 6}, 1), box({7, 4, 4, 12}, 1), box({12, 4, 4, 9}, 1)}};
}

TemplateImage cupSymbol() {
  // The outlines reach beyond their clips where a corner is to stay square.
  const TemplateShape cup{{{3, 6, 9, 14}, 4}, 1, RoundedRect{{3, 6, 9, 9}, 0}, {}};
  const TemplateShape handle{
      {{9.5, 8, 6.5, 6}, 3}, 1, RoundedRect{{12, 7, 6, 8}, 0}, RoundedRect{{11, 9.5, 3.5, 3}, 1.5}};
  return {{cup, handle, box({1, 3, 14, 1.5}, 0.75)}};
}

TemplateImage cloudSymbol() { return {{box({1, 4, 16, 6}, 3), box({2.5, 5, 7, 7}, 3.5), box({6, 5, 9, 9}, 4.5)}}; }

}  // namespace nimbo
