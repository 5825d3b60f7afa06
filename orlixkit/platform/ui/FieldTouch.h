#pragma once

namespace orlix {

class TextField;
class ViewController;

/// A user touches a field of the screen: the field that had the cursor ends its editing, and the
/// cursor comes in behind the text. A field in editing keeps it where it is. False when the field
/// wants no editing. Main thread.
bool touchField(const ViewController& screen, TextField& field);

}  // namespace orlix
