#include "orlixkit/platform/ui/FieldTouch.h"

#include "orlixkit/platform/ui/TextField.h"
#include "orlixkit/platform/ui/ViewController.h"

namespace orlix {

bool touchField(const ViewController& screen, TextField& field) {
  for (const std::string& name : screen.outletNames()) {
    const auto other = std::dynamic_pointer_cast<TextField>(screen.outletNamed(name));
    if (other && other.get() != &field && other->editing()) {
      other->endEditing();
    }
  }
  if (field.editing()) {
    return true;
  }
  if (!field.beginEditing()) {
    return false;
  }
  field.setCaret(field.textLength());
  return true;
}

}  // namespace orlix
