// SPDX-License-Identifier: MIT
#include "usage/claude/trust_question.h"

#include <algorithm>

#include "base/utf8_text.h"

namespace nimbo {

TrustQuestion::TrustQuestion(const std::vector<std::string>& folderNames)
    : signs_{{{}}, {{"y. Yes, I trust this folder"}}, {{"Enter y/n:"}}} {
  for (const std::string& name : folderNames) signs_.front().forms.push_back(repairedUtf8(name));
}

void TrustQuestion::append(std::string_view bytes) {
  const std::size_t known = text_.settled().size();
  text_.append(bytes);
  for (Sign& sign : signs_) look(sign, known);
}

void TrustQuestion::look(Sign& sign, std::size_t from) const {
  for (const std::string& form : sign.forms) {
    if (sign.met) return;
    // It may have begun in what was known before.
    sign.met = text_.settled().find(form, from - std::min(from, form.size())) != std::string::npos;
  }
}

bool TrustQuestion::isAsked() const { return std::ranges::all_of(signs_, &Sign::met); }

}  // namespace nimbo
