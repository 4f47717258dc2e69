// Shows one of the windows, with its font enlarged if asked to, and prints what is wrong with its
// layout: controls that lie over each other, outside of what holds them, or cut their text off.
//   Gallery options|log|question|about [FACTOR [check]]    check: does not stay open

using System;
using System.Drawing;
using System.Globalization;
using System.Runtime.InteropServices;
using System.Windows.Forms;
using Orv.Dialogs;

static class Gallery {
  static int s_problems;

  static int Main(string[] arguments) {
    Form form = Make(arguments[0]);
    if (arguments.Length > 1) {
      float factor = float.Parse(arguments[1], CultureInfo.InvariantCulture);
      form.Font = new Font(form.Font.FontFamily, form.Font.Size * factor);
    }
    form.StartPosition = FormStartPosition.CenterScreen;
    form.Shown += (sender, e) => {
      Check(form);
      Size smallest = form.Size;
      form.Size = new Size(smallest.Width * 3 / 2, smallest.Height * 3 / 2);
      Check(form);
      form.Size = smallest;
      if (arguments.Length > 2) form.Close();
    };
    form.ShowDialog();
    return s_problems == 0 ? 0 : 1;
  }

  static Form Make(string name) {
    switch (name) {
      case "options":
        var dialog = new DialogOptions();
        dialog.Take(new OptionsRecord {
          ExportGeometry = 1, ExportAnimation = 1, AnimationEndFrame = 120, ExportEndFrame = 120,
          EventFileName = MCUtil.StringToAnsi("/home/artist/railcar.evt") });
        return dialog;
      case "log":
        var log = new DialogLog();
        log.Shown += (sender, e) => {
          log.Append(0, "Exporting...");
          log.Append(1, "Ignoring mesh - no texture mapping for mesh: roof");
          log.Append(2, "Material 'lamp' name is invalid.  Materials should be named and have a " +
                        "'m.' material type suffix.");
          log.Append(0, "Skipping existing file: './livery.texture.txt'");
          log.Append(2, "Export completed with 1 Errors and 1 Warnings.");
        };
        return log;
      case "question":
        return new DialogMessageBox(ButtonSet.YesYesAllNoNoAllCancel, IconKind.Warning,
                                    ".texture.txt file ./livery.texture.txt already exists.\n" +
                                        "  Overwrite file?\n");
      case "about":
        return new DialogAbout("Copyright (C) 2026 The OrvExporter developers");
      default:
        throw new ArgumentException(name);
    }
  }

  static void Check(Control parent) {
    Rectangle inside = parent.DisplayRectangle;
    for (int i = 0; i < parent.Controls.Count; ++i) {
      Control child = parent.Controls[i];
      if (!(child is UpDownBase) && !(parent is UpDownBase)) {
        if (!inside.Contains(child.Bounds)) Complain(child, "is cut off by what holds it");
        for (int j = 0; j < i; ++j) {
          if (child.Bounds.IntersectsWith(parent.Controls[j].Bounds))
            Complain(child, "lies over " + parent.Controls[j].Text);
        }
      }
      if (child is ButtonBase || child is Label) CheckText(child);
      if (!(child is UpDownBase)) Check(child);
    }
  }

  static void CheckText(Control control) {
    Size text = TextRenderer.MeasureText(control.Text.Replace("&", ""), control.Font);
    if (control.Height < control.Font.Height) Complain(control, "is lower than its text");
    if (control.Width < text.Width - 8 && !control.Text.Contains("\n") && control.Height < 2 * control.Font.Height)
      Complain(control, "is narrower than its text");
  }

  static void Complain(Control control, string what) {
    ++s_problems;
    Console.WriteLine("'{0}' {1}: {2}", control.Text, what, control.Bounds);
  }
}
