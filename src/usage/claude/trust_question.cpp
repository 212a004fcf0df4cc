// SPDX-License-Identifier: MIT
#include "usage/claude/trust_question.h"

#include <algorithm>

#include "base/utf8_text.h"

namespace nimbo {

TrustQuestion::TrustQuestion(const std::vector<std::string>& folderNames)
    : missing_{folderNames, {"y. Yes, I trust this folder"}, {"Enter y/n:"}} {
  for (std::string& name : missing_.front()) name = repairedUtf8(name);
}

void TrustQuestion::append(std::string_view bytes) {
  const std::size_t known = text_.settled().size();
  text_.append(bytes);
  const auto isShown = [&](const std::string& form) {
    // It may have begun in what was known before.
    return text_.settled().find(form, known - std::min(known, form.size())) != std::string::npos;
  };
  std::erase_if(missing_, [&](const auto& forms) { return std::ranges::any_of(forms, isShown); });
}

}  // namespace nimbo
