// SPDX-License-Identifier: Apache-2.0

#include "shell/PageInput.h"

#include <QDeadlineTimer>
#include <QTimer>
#include <optional>
#include <stdexcept>

#include "shell/QtWebScript.h"

namespace orlix::shell {

namespace {

constexpr std::chrono::milliseconds kBetweenLooks{20};

/// Runs `doing` on the `found` element when a user can touch it; returns the reason otherwise.
std::string touching(const std::string& selector, const std::string& doing) {
  return "(function(){const found=document.querySelector(" + quotedForScript(selector) +
         ");"
         "if(!found)return 'is not on the page';"
         "found.scrollIntoView({block:'center',inline:'center'});"
         "const box=found.getBoundingClientRect();"
         "if(!box.width||!box.height||getComputedStyle(found).visibility!=='visible')"
         "return 'cannot be seen';"
         "const top=document.elementFromPoint(box.x+box.width/2,box.y+box.height/2);"
         "if(!top||!(found.contains(top)||top.contains(found)))return 'is covered';"
         "if(found.disabled)return 'is disabled';" +
         doing + "return '';})()";
}

/// Returns "found" when the element exists and the page has been drawn since, so that a snapshot
/// shows what a script has waited for. A hidden page is not drawn.
std::string lookingFor(const std::string& selector) {
  return "(function(){try{if(!document.querySelector(" + quotedForScript(selector) +
         "))return '';"
         "if(document.hidden||globalThis.drawnFrames>=3)return 'found';"
         "if(globalThis.drawnFrames===undefined){globalThis.drawnFrames=0;"
         "const count=function(){if(++globalThis.drawnFrames<3)requestAnimationFrame(count);};"
         "requestAnimationFrame(count);}"
         "return '';}catch(e){return String(e);}})()";
}

}  // namespace

void PageInput::touch(const std::string& selector, const std::string& doing) {
  const std::shared_ptr<WebView> page = shownPage_();
  if (!page) {
    throw std::runtime_error("no web page is shown");
  }
  const auto result = std::make_shared<std::optional<ScriptResult>>();
  page->evaluateJavaScript(touching(selector, doing),
                           [result](const ScriptResult& given) { *result = given; });
  mainQueue_->runUntil([result] { return result->has_value(); });
  if (!result->has_value()) {
    throw std::runtime_error("the application has ended");
  }
  if (!(*result)->value) {
    throw std::runtime_error("the page refuses " + selector + ": " + (*result)->error);
  }
  if (const SecretString& reason = *(*result)->value; !reason.empty()) {
    throw std::runtime_error(selector + " " + std::string(reason.text()));
  }
}

void PageInput::type(const std::string& selector, const std::string& text) {
  touch(selector,
        "if(typeof found.value!=='string'||found.readOnly)return 'takes no text';"
        "found.focus();"
        "for(const key of " +
            quotedForScript(text) +
            "){if(found.maxLength>=0&&found.value.length>=found.maxLength)break;"
            "found.value+=key;"
            "found.dispatchEvent(new InputEvent('input',{bubbles:true,data:key}));}"
            "found.dispatchEvent(new Event('change',{bubbles:true}));");
}

void PageInput::click(const std::string& selector) { touch(selector, "found.click();"); }

void PageInput::wait(const std::string& selector, std::chrono::milliseconds limit) {
  struct Look {
    bool underWay = false;
    bool found = false;
    std::string refusal;
  };
  const auto look = std::make_shared<Look>();
  const std::string script = lookingFor(selector);
  const auto lookAgain = [this, look, &script] {
    const std::shared_ptr<WebView> page = look->underWay ? nullptr : shownPage_();
    if (!page) {
      return;
    }
    look->underWay = true;
    page->evaluateJavaScript(script, [look](const ScriptResult& result) {
      look->underWay = false;
      // The page navigated away before it answered, or none is loaded yet: check again.
      const std::string answer(result.value.value_or(SecretString()).text());
      look->found = answer == "found";
      look->refusal = look->found ? "" : answer;
    });
  };
  const QDeadlineTimer deadline(limit);
  QTimer pace;
  const auto tick = [queue = mainQueue_] { queue->async([] {}); };
  QObject::connect(&pace, &QTimer::timeout, &pace, tick);
  QObject::connect(&pace, &QTimer::timeout, &pace, lookAgain);
  pace.start(kBetweenLooks);
  lookAgain();
  mainQueue_->runUntil(
      [&] { return look->found || !look->refusal.empty() || deadline.hasExpired(); });
  if (!look->refusal.empty()) {
    throw std::runtime_error("the page refuses " + selector + ": " + look->refusal);
  }
  if (!look->found) {
    throw std::runtime_error(selector + " has not come");
  }
}

}  // namespace orlix::shell
