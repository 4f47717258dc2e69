// Stands for the options dialog in an assembly whose windows fail.

using System;
using System.Windows.Forms;

namespace Orv.Dialogs {

public sealed class DialogOptions : Form {
  public void Take(OptionsRecord options) {
    throw new InvalidOperationException("thrown on purpose");
  }

  public void PutInto(ref OptionsRecord options) {}
}
}
