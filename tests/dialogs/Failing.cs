// Stands for the windows in an assembly of which one fails: the one that FAILING names.

using System;
using System.Windows.Forms;

namespace Orv.Dialogs {

public sealed class DialogOptions : Form {
  public DialogOptions() { Shown += (sender, e) => DialogResult = DialogResult.OK; }

  public void Take(OptionsRecord options) {
    if (Environment.GetEnvironmentVariable("FAILING") == "options")
      throw new InvalidOperationException("failed on purpose");
  }

  public void PutInto(ref OptionsRecord options) {}
}

public sealed class DialogLog : Form {
  public DialogLog() {
    Text = "Velmor Exporter Log";
    HandleDestroyed += (sender, e) => Bridge.SignalLogClosed();
  }

  public void Append(int severity, string text) {
    throw new InvalidOperationException("failed on purpose");
  }
}
}
