using System;
using System.Drawing;
using System.Windows.Forms;

namespace Orv.Dialogs {

// What the windows have in common. All distances follow the font, so that a larger one leaves the
// proportions as they are.
static class Look {
  public const float FontSize = 8.25f;  // points

  static readonly Font s_font = new Font("Microsoft Sans Serif", FontSize);

  // Half a line of text: the distance between neighbours. Twice that is the edge of a window.
  public static int Gap(Control control) {
    return control.Font.Height / 2;
  }

  public static void Prepare(Form form, string title) {
    form.Font = s_font;
    form.Text = title;
    form.AutoScaleMode = AutoScaleMode.None;
    form.ShowIcon = false;
    form.MinimizeBox = false;
    form.MaximizeBox = false;
  }

  // For a window that the host owns: over it and out of the task bar. Without one it stands alone.
  public static void Place(Form form, IWin32Window owner) {
    form.ShowInTaskbar = owner == null;
    form.StartPosition =
        owner == null ? FormStartPosition.CenterScreen : FormStartPosition.CenterParent;
  }

  // Columns of the given kinds: a percentage, or 0 for one as wide as what is in it.
  public static TableLayoutPanel Table(params float[] columns) {
    var table = new TableLayoutPanel { AutoSize = true,
                                       AutoSizeMode = AutoSizeMode.GrowAndShrink,
                                       ColumnCount = columns.Length, Dock = DockStyle.Fill,
                                       Margin = Padding.Empty };
    foreach (float width in columns) {
      table.ColumnStyles.Add(width > 0 ? new ColumnStyle(SizeType.Percent, width)
                                       : new ColumnStyle(SizeType.AutoSize));
    }
    return table;
  }

  // The row of a window's buttons, the last one at its right edge.
  public static FlowLayoutPanel ButtonRow(params Button[] buttons) {
    var row = new FlowLayoutPanel { AutoSize = true, WrapContents = false,
                                    AutoSizeMode = AutoSizeMode.GrowAndShrink,
                                    Anchor = AnchorStyles.Right, Margin = Padding.Empty };
    row.Controls.AddRange(buttons);
    return row;
  }

  // Buttons of one height, each as wide as its caption needs and none narrower than "Cancel".
  public static void SizeButtons(params Button[] buttons) {
    foreach (Button button in buttons) {
      int gap = Gap(button);
      Size text = TextRenderer.MeasureText(button.Text, button.Font);
      button.AutoSize = false;
      button.Size = new Size(Math.Max(text.Width + 4 * gap, 13 * gap), 4 * gap);
      button.Margin = new Padding(gap, 0, 0, 0);
    }
    buttons[0].Margin = Padding.Empty;
  }
}

// The host's main window, for those that are shown over it.
sealed class OwnerWindow : IWin32Window {
  readonly IntPtr m_handle;

  OwnerWindow(int handle) { m_handle = new IntPtr(handle); }

  public IntPtr Handle { get { return m_handle; } }

  // Null for 0.
  public static IWin32Window From(int handle) {
    return handle == 0 ? null : new OwnerWindow(handle);
  }
}
}
