// Prints every window as a person meets it, row by row, and what is wrong with its layout: controls
// that lie over each other, outside of what holds them, or cut their text off.

using System;
using System.Collections.Generic;
using System.Drawing;
using System.Linq;
using System.Windows.Forms;
using Orv.Dialogs;

static class Gallery {
  static readonly Func<Form>[] s_windows = {
    Options, () => new DialogLog(),
    () => new DialogMessageBox(ButtonSet.YesYesAllNoNoAllCancel, IconKind.Warning,
                               "./a&b.texture.txt already exists.\n  Overwrite file?\n"),
    () => new DialogMessageBox(ButtonSet.YesYesAllNoNoAll, IconKind.Error, new string('x', 400)),
    () => new DialogAbout("Copyright (C) 2026 The OrvExporter developers")
  };

  static void Main() {
    foreach (Func<Form> make in s_windows) {
      foreach (float factor in new[] { 1.5f, 1 }) {
        using (Form form = make()) {
          if (factor != 1) form.Font = new Font(form.Font.FontFamily, form.Font.Size * factor);
          Show(form);
          if (factor == 1) Describe(form);
        }
      }
    }
    LogWindow.Open(0);
    foreach (int severity in new[] { 0, 1, 1, 2, 0 }) LogWindow.Append(severity, "of " + severity);
    LogWindow.HandleMessages(true);
    Describe(LogWindow.Current);
    LogWindow.Close();
    Application.Idle += (sender, e) =>
        Application.OpenForms.Cast<Form>().ToList().ForEach(DescribeAndCancel);
    Console.WriteLine(EventFilePicker.Pick(null, "Picker", EventFilePicker.AllFilters, "") ?? "none");
  }

  static Form Options() {
    var dialog = new DialogOptions();
    dialog.Take(new OptionsRecord {
      ExportGeometry = 1, CollectTextures = 1, AnimationStartFrame = 120, AnimationEndFrame = -10,
      ExportStartFrame = -20, ExportEndFrame = 90,
      EventFileName = MCUtil.StringToAnsi("/home/k\u00FCnstler/railcar.evt") });
    return dialog;
  }

  static void Show(Form form) {
    form.Show();
    Application.DoEvents();
    Check(form);
    form.Size += new Size(form.Width / 2, form.Height / 2);
    Check(form);
  }

  static void Describe(Form form) {
    Console.WriteLine("{0}: {1}{2}, Enter {3}, Escape {4}", form.Text, form.FormBorderStyle,
                      form.MaximizeBox ? " with a button" : "",
                      ((Control)form.AcceptButton).Text, ((Control)form.CancelButton).Text);
    foreach (Control control in Below(form).Where(one => !(one is Panel))) {
      Console.WriteLine("  {0}{1}: {2}", control.GetType().Name, control.Enabled ? "" : " (greyed)",
                        Facts(control));
    }
  }

  static void DescribeAndCancel(Form picker) {
    var texts = Below(picker).OfType<ComboBox>().SelectMany(box => box.Items.Cast<object>());
    Console.WriteLine("{0}: {1}", picker.Text,
                      string.Join(", ", texts.Where(text => text.ToString().Contains("*."))));
    picker.DialogResult = DialogResult.Cancel;
  }

  static string Facts(Control control) {
    if (control is CheckBox) return control.Text + (((CheckBox)control).Checked ? " [x]" : " [ ]");
    if (control is NumericUpDown) {
      var box = (NumericUpDown)control;
      return box.Minimum + " <= " + box.Value + " <= " + box.Maximum;
    }
    if (control is PictureBox) return KindOf(((PictureBox)control).Image).ToString();
    if (control is RichTextBox) return Lines((RichTextBox)control);
    return control.Text;
  }

  static IconKind KindOf(Image image) {
    var icons = new[] { SystemIcons.Information, SystemIcons.Warning, SystemIcons.Error };
    Func<Image, byte[]> bytes = one => (byte[])new ImageConverter().ConvertTo(one, typeof(byte[]));
    return (IconKind)Array.FindIndex(icons,
                                     icon => bytes(icon.ToBitmap()).SequenceEqual(bytes(image)));
  }

  // With one that comes in while the last one is selected.
  static string Lines(RichTextBox box) {
    string facts = "";
    for (int i = 0; i + 1 < box.Lines.Length; ++i) {
      box.Select(box.GetFirstCharIndexFromLine(i), box.Lines[i].Length);
      facts += string.Format("\n    {0} {1:X6}{2}", box.SelectedText,
                             box.SelectionColor.ToArgb() & 0xFFFFFF,
                             box.SelectionFont.Bold ? " bold" : "");
    }
    ((DialogLog)box.FindForm()).Append(0, "last");
    return facts + "\n    selected: " + box.SelectedText;
  }

  // All controls in a window, from left to right and from top to bottom.
  static IEnumerable<Control> Below(Control parent) {
    var controls = parent.Controls.Cast<Control>().Where(one => !(parent is UpDownBase)).ToList();
    controls.Sort((a, b) => a.Bottom <= b.Top ? -1 : b.Bottom <= a.Top ? 1 : a.Left - b.Left);
    return controls.SelectMany(control => new[] { control }.Concat(Below(control)));
  }

  static void Check(Control parent) {
    var controls = Below(parent).Where(child => child.Parent == parent).ToList();
    foreach (Control child in controls) {
      if (!parent.DisplayRectangle.Contains(child.Bounds))
        Complain(child, "is cut off by what holds it");
      foreach (Control other in controls.Where(other => other != child)) {
        if (child.Bounds.IntersectsWith(other.Bounds)) Complain(child, "lies over " + other.Text);
      }
      Size text = TextRenderer.MeasureText(child.Text.Replace("&", ""), child.Font);
      int line = child.Font.Height;
      if ((child is ButtonBase || child is Label) &&
          (child.Height < line || (child.Height < 2 * line && child.Width < text.Width - 8)))
        Complain(child, "is smaller than its text");
      Check(child);
    }
  }

  static void Complain(Control control, string what) {
    Console.WriteLine("'{0}' {1}: {2}", control.Text, what, control.Bounds);
  }
}
