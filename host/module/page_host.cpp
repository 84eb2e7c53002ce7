// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/page_host.h"

#include <algorithm>
#include <utility>

#include "host/support/text.h"

namespace glimmerhost {

void Dialog::Add(Widget widget) {
  const auto have = std::find_if(widgets_.begin(), widgets_.end(),
                                 [&](const Widget& w) { return w.name == widget.name; });
  if (have == widgets_.end()) {
    widgets_.push_back(std::move(widget));
  } else {
    *have = std::move(widget);
  }
}

void Dialog::addColourBox(const quantel::wstring& widget, const quantel::wstring& key,
                          quantel::cRect4 /*cell*/, const quantel::cColour& /*startColour*/) {
  Add({ToUtf8(widget), ToUtf8(key), ""});
}

void Dialog::addButton(const quantel::wstring& widget, const quantel::wstring& key,
                       quantel::cRect4 /*cell*/, const quantel::wstring& label) {
  Add({ToUtf8(widget), ToUtf8(key), ToUtf8(label)});
}

void Dialog::setWidgetVisible(const quantel::wstring& widget, bool visible) {
  for (Widget& have : widgets_) {
    if (have.name == ToUtf8(widget)) {
      have.visible = visible;
    }
  }
}

bool Dialog::isWidgetVisible(const quantel::wstring& widget) {
  const Widget* have = Find(ToUtf8(widget));
  return have != nullptr && have->visible;
}

const Widget* Dialog::Find(const std::string& name) const {
  const auto have = std::find_if(widgets_.begin(), widgets_.end(),
                                 [&](const Widget& widget) { return widget.name == name; });
  return have == widgets_.end() ? nullptr : &*have;
}

void PageResult::update() {
  if (listener_) {
    listener_();
  }
}

}  // namespace glimmerhost
