// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlixkit/ui/Geometry.h"

namespace orlix {

struct Font {
  std::string name;
  double size = 17;
  friend bool operator==(const Font&, const Font&) = default;
};

/// A rectangle of a screen, as far as a rule of the library reads or writes it. It draws nothing: a
/// shell listens to `onChange` and shows what the fields say. Main thread only.
class View : public std::enable_shared_from_this<View> {
 public:
  virtual ~View() = default;

  /// Word for what this is, as a dump names it: "view", "label", "button", "field", ...
  virtual std::string kind() const { return "view"; }
  /// What a reader sees in it; the empty text for what shows none. A secure field shows bullets.
  virtual std::string shownText() const { return {}; }

  bool hidden() const { return hidden_; }
  void setHidden(bool hidden) { set(hidden_, hidden); }
  /// Sets "hidden" on every direct subview; the view itself stays as it is.
  void setSubviewsHidden(bool hidden);
  /// Hidden itself, inside something hidden, or with nothing but hidden subviews: not to be seen.
  bool isOutOfSight() const;

  Rect frame() const { return frame_; }
  void setFrame(Rect frame) { set(frame_, frame); }
  double alpha() const { return alpha_; }
  void setAlpha(double alpha) { set(alpha_, alpha); }
  Color backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(Color color) { set(backgroundColor_, color); }
  Color tintColor() const { return tintColor_; }
  void setTintColor(Color color) { set(tintColor_, color); }
  double cornerRadius() const { return cornerRadius_; }
  void setCornerRadius(double radius) { set(cornerRadius_, radius); }
  double borderWidth() const { return borderWidth_; }
  Color borderColor() const { return borderColor_; }
  void setBorder(double width, Color color);
  int tag() const { return tag_; }
  void setTag(int tag) { set(tag_, tag); }

  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  std::shared_ptr<View> superview() const { return superview_.lock(); }
  void addSubview(const std::shared_ptr<View>& view);
  void insertSubview(const std::shared_ptr<View>& view, std::size_t index);
  void removeFromSuperview();

  /// A single tap on the view itself (a label used as a link, a card area).
  std::function<void()> onTap;

  /// Called after a displayed property changes. Single observer: the shell that draws this view.
  std::function<void()> onChange;

 protected:
  template <class T>
  void set(T& field, T value) {
    if (!(field == value)) {
      field = std::move(value);
      changed();
    }
  }
  void changed() const {
    if (onChange) {
      onChange();
    }
  }

 private:
  bool hidden_ = false;
  Rect frame_;
  double alpha_ = 1;
  Color backgroundColor_ = kClear;
  Color tintColor_ = kWhite;
  double cornerRadius_ = 0;
  double borderWidth_ = 0;
  Color borderColor_ = kClear;
  int tag_ = 0;
  std::vector<std::shared_ptr<View>> subviews_;
  std::weak_ptr<View> superview_;
};

enum class TextAlignment { left, center };

class Label : public View {
 public:
  std::string kind() const override { return "label"; }
  std::string shownText() const override { return text_; }
  const std::string& text() const { return text_; }
  void setText(std::string text) { set(text_, std::move(text)); }
  /// True: `text` is an HTML fragment, to be shown as such.
  bool isHtml() const { return html_; }
  void setHtml(std::string html);
  const Font& font() const { return font_; }
  void setFont(Font font) { set(font_, std::move(font)); }
  Color textColor() const { return textColor_; }
  void setTextColor(Color color) { set(textColor_, color); }
  TextAlignment alignment() const { return alignment_; }
  void setAlignment(TextAlignment alignment) { set(alignment_, alignment); }

 private:
  std::string text_;
  bool html_ = false;
  Font font_{"Regular", 17};
  Color textColor_ = kWhite;
  TextAlignment alignment_ = TextAlignment::left;
};

class ImageView : public View {
 public:
  std::string kind() const override { return "image"; }
  std::string shownText() const override { return imageName_; }
  /// Name of an image resource, such as "visa100".
  const std::string& imageName() const { return imageName_; }
  void setImageName(std::string name) { set(imageName_, std::move(name)); }

 private:
  std::string imageName_;
};

class Button : public View {
 public:
  Button() : titleLabel_(std::make_shared<Label>()) {}
  std::string kind() const override { return "button"; }
  std::string shownText() const override { return title(); }
  const std::string& title() const { return titleLabel_->text(); }
  void setTitle(std::string title);
  const std::shared_ptr<Label>& titleLabel() const { return titleLabel_; }
  const std::string& imageName() const { return imageName_; }
  void setImageName(std::string name) { set(imageName_, std::move(name)); }
  bool enabled() const { return enabled_; }
  void setEnabled(bool enabled) { set(enabled_, enabled); }
  /// What a touch that ends inside the button does.
  std::function<void()> onTouchUpInside;

 private:
  std::shared_ptr<Label> titleLabel_;
  std::string imageName_;
  bool enabled_ = true;
};

class ActivityIndicator : public View {
 public:
  std::string kind() const override { return "activity"; }
  Color color() const { return color_; }
  void setColor(Color color) { set(color_, color); }

 private:
  Color color_ = kWhite;
};

}  // namespace orlix
